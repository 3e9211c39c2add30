#ifndef MARLUNE_TOOLS_MARLUNE_GRAMMAR_WALK_H_
#define MARLUNE_TOOLS_MARLUNE_GRAMMAR_WALK_H_

#include <memory>
#include <string>
#include <vector>

#include "marlune/grammar/model/rule.h"

namespace marlune::tool {

using PhrasePointer = std::shared_ptr<const SimpleSlotSequence>;

// One rule's turn at a phrase.
struct Turn {
  std::string path;      // the names from below the grammar's root down to the rule's, as in "A.B"
  const Rule* rule;      // the grammar's
  PhrasePointer before;  // with a blank at each end
  PhrasePointer after;   // the very same as before when the rule changed nothing
  std::vector<std::string> messages;  // what it logged, without the comparisons
};

// The turns of all rules in a grammar, one after another, as the grammar itself applies them. The
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

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_GRAMMAR_WALK_H_
