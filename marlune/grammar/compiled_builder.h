#ifndef MARLUNE_GRAMMAR_COMPILED_BUILDER_H_
#define MARLUNE_GRAMMAR_COMPILED_BUILDER_H_

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "marlune/grammar/compiled_tables.h"
#include "marlune/grammar/conditional_production.h"
#include "marlune/grammar/grammar_part.h"
#include "marlune/grammar/new_production.h"
#include "marlune/grammar/rule.h"
#include "marlune/grammar/slot_run.h"

namespace marlune {

// Compiles a grammar's tree. A rule that cannot be compiled is marked as left to its object.
class CompiledBuilder {
 public:
  static CompiledTables build(const GrammarPart& root);

 private:
  using Element = CompiledPatterns::Element;
  using Run = CompiledPatterns::Run;
  using Features = std::vector<std::uint64_t>;

  CompiledBuilder();

  void _addPart(const GrammarPart& part);
  void _addRule(const Rule& rule);
  void _compile(const Rule& rule, CompiledRule& compiled);

  Run _run(const SlotArray& slots);
  Element _element(const Slot& slot);
  Element _elementOf(const Cell& cell);
  bool _require(const AttributeDictionary::Entry& attribute);

  void _compile(const GenericProduction& production, std::size_t matched, CompiledRule& compiled);
  std::uint32_t _production(const NewProduction& production, std::size_t matched);
  CompiledProductions::Run _settings(const Cell& overlay, std::size_t matched);
  std::uint32_t _choice(const ConditionalProduction& production, std::size_t matched);

  void _fileRules();
  static bool _changesNothing(const Rule& rule);
  void _countFeatures(const Element& element);
  void _file(std::uint32_t number);
  Features _triggerOf(const Element& element) const;
  std::size_t _costOf(const Features& features) const;
  template <typename Visit>
  void _forEachElement(const CompiledRule& rule, Visit visit) const;

  CompiledVocabulary::Id _id(std::string_view text) { return _tables.vocabulary->add(text); }
  std::int32_t _checked(std::int32_t index, std::size_t matched);

  CompiledTables _tables;
  std::vector<const Rule*> _objects;  // by rule
  bool _isSupported = true;           // whether all of the rule at hand has a compiled form
  std::unordered_map<std::uint64_t, std::uint32_t> _frequencies;  // of features, in rules
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_COMPILED_BUILDER_H_
