#ifndef MARLUNE_WORKBENCH_DERIVATION_GRAMMAR_WALK_H_
#define MARLUNE_WORKBENCH_DERIVATION_GRAMMAR_WALK_H_

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "marlune/grammar/model/rule.h"
#include "marlune/platform/failure.h"

namespace marlune {

using PhrasePointer = std::shared_ptr<const SimpleSlotSequence>;

// One application of one rule to a phrase.
struct Turn {
  std::string path;                   // part names below the root, joined: "A.B"
  const Rule* rule;                   // owned by the grammar
  PhrasePointer before;               // with a blank at each end
  PhrasePointer after;                // the same object as `before` if the rule changed nothing
  std::vector<std::string> messages;  // what the rule logged, without the comparisons
  std::optional<Failure> unfinished;  // why the rule stopped early
};

// Applies all rules of a grammar to a phrase, in the grammar's own order, and keeps each step. The
// grammar must outlive the result.
class GrammarWalk {
 public:
  GrammarWalk(const GrammarPart& grammar, PhrasePointer phrase);

  const std::vector<Turn>& turns() const { return _turns; }
  const PhrasePointer& before() const { return _before; }
  const PhrasePointer& after() const { return _current; }

 private:
  void _apply(const GrammarPart& part, const std::string& path);
  void _applyRule(const Rule& rule, const std::string& path);

  PhrasePointer _before;
  PhrasePointer _current;
  std::vector<Turn> _turns;
};

}  // namespace marlune

#endif  // MARLUNE_WORKBENCH_DERIVATION_GRAMMAR_WALK_H_
