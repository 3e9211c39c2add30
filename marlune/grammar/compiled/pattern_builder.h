#ifndef MARLUNE_GRAMMAR_COMPILED_PATTERN_BUILDER_H_
#define MARLUNE_GRAMMAR_COMPILED_PATTERN_BUILDER_H_

#include <cstddef>
#include <span>
#include <vector>

#include "marlune/grammar/compiled/patterns.h"
#include "marlune/grammar/compiled/rule.h"
#include "marlune/platform/value.h"

namespace marlune {

// Compiles left-hand sides.
class PatternBuilder {
 public:
  // Both must outlive the builder.
  PatternBuilder(CompiledPatterns& patterns, Vocabulary& vocabulary)
      : _patterns(patterns), _vocabulary(vocabulary) {}

  // Fills in the rule's patterns. Returns false if the left-hand side has no compiled form; what
  // was added to the tables by then is never used.
  bool read(const Value& leftHandSide, CompiledRule& rule);

 private:
  using Element = CompiledPatterns::Element;
  using Kind = CompiledPatterns::Kind;
  using Requirement = CompiledPatterns::Requirement;
  using Run = CompiledPatterns::Run;

  bool _context(const Value* slots, bool backwards, Run& run);
  bool _run(std::span<const Value> slots, bool backwards, bool isAsked, Run& run);
  bool _element(const Value& slot, bool backwards, bool isAsked, Element& element);
  bool _cell(const Value& cell, Element& element);
  bool _literal(const Dictionary& attributes, Element& element);
  Element _literalOf(std::size_t firstRequirement);

  CompiledPatterns& _patterns;
  Vocabulary& _vocabulary;
  std::vector<Element> _elements;  // of the runs being read
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_COMPILED_PATTERN_BUILDER_H_
