#ifndef MARLUNE_GRAMMAR_COMPILED_BUILDER_H_
#define MARLUNE_GRAMMAR_COMPILED_BUILDER_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "marlune/grammar/compiled/tables.h"
#include "marlune/grammar/model/grammar_objects.h"
#include "marlune/grammar/model/rule.h"
#include "marlune/platform/value.h"

namespace marlune {

// Compiles a grammar directly from its property list, without the rules' objects, which take longer
// to make than the compiled form. Has the same side effects as making them: writes the parts'
// places into the list, and logs lines (except traced ones). Rules that have no compiled form, or
// are malformed, are left to their objects; this is rare.
class CompiledBuilder {
 public:
  struct Result {
    CompiledTables tables;
    GrammarObjects::Rules objects;  // of the rules left to their objects
  };

  // REQUIRES: a dictionary. Throws GrammarError when the grammar is broken.
  static Result build(const Value& plist);

 private:
  using Element = CompiledPatterns::Element;
  using Run = CompiledPatterns::Run;
  using Id = Vocabulary::Id;
  using Features = std::vector<std::uint64_t>;
  class Part;

  CompiledBuilder();

  Part _part(const Value& plist);
  std::uint32_t _addRule(const Value& plist);
  void _arrange(const std::vector<std::uint32_t>& numbers);

  bool _compile(const Dictionary& plist, CompiledRule& compiled);
  bool _runUnder(const std::string& key, const Dictionary& plist, bool backwards, Run& run);
  bool _run(std::span<const Value> slots, bool backwards, bool isAsked, Run& run);
  bool _element(const Value& slot, bool backwards, bool isAsked, Element& element);
  bool _literal(const Dictionary& attributes, Element& element);
  Element _literalOf(std::size_t firstRequirement);
  bool _group(std::span<const Value> slot, bool backwards, bool isAsked, Element& element);

  bool _production(const Array& plist, std::size_t matched, std::uint32_t& production);
  bool _settings(const Dictionary& overlay, std::size_t matched);
  bool _choice(const Dictionary& plist, std::size_t matched, std::uint32_t& choice);
  bool _reference(const Value& plist, std::size_t matched,
                  CompiledProductions::Reference& reference);

  void _fileRules();
  void _countFeatures(const Element& element);
  void _file(std::uint32_t number);
  Features _triggerOf(const Element& element) const;
  std::size_t _costOf(const Features& features) const;
  template <typename Visit>
  void _forEachElement(const CompiledRule& rule, Visit visit) const;

  Id _id(std::string_view text) { return _tables.vocabulary->add(text); }

  CompiledTables _tables;
  std::vector<std::shared_ptr<const Rule>> _objects;  // indexed by rule; null where there is none
  std::vector<char> _isIdle;                          // indexed by rule: whether it does nothing at
                                                      // all
  std::vector<Element> _elements;                     // of the runs being read
  std::unordered_map<std::uint64_t, std::uint32_t> _frequencies;  // for each feature, the number of
                                                                  // uses in rules
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_COMPILED_BUILDER_H_
