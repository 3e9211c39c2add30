#ifndef MARLUNE_GRAMMAR_COMPILED_RULE_H_
#define MARLUNE_GRAMMAR_COMPILED_RULE_H_

#include <cstdint>

#include "marlune/grammar/compiled/patterns.h"
#include "marlune/grammar/compiled/productions.h"

namespace marlune {

// One rule of a compiled grammar. Rules are numbered in the order in which they are applied.
struct CompiledRule {
  static constexpr std::uint32_t kNoAnchor = 0xFFFFFFFF;

  // The bits of all features that a slot must have for the rule to apply; see CompiledIndex.
  std::uint64_t mask = 0;

  CompiledPatterns::Run significant;
  CompiledPatterns::Run before;  // the pre-context, from its last slot to its first
  CompiledPatterns::Run after;

  // A slot of the three patterns that few words match, and the offset from it (negative if before
  // it) to the start of the significant slots.
  std::uint32_t anchor = kNoAnchor;
  std::int32_t anchorOffset = 0;

  std::uint32_t productionNumber = 0;
  CompiledProductions::Production::Kind productionKind = {};
  bool repeats = false;
  bool hasKleene = false;

  // Whether the grammar's object applies the rule: matching writes lines, or part of the rule has
  // no compiled form.
  bool isLeftToObject = false;

  CompiledProductions::Production production() const { return {productionKind, productionNumber}; }
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_COMPILED_RULE_H_
