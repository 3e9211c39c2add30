#ifndef MARLUNE_TOOLS_MARLUNE_REWRITING_WHY_H_
#define MARLUNE_TOOLS_MARLUNE_REWRITING_WHY_H_

#include <string>

#include "tools/marlune/rewriting/grammar_walk.h"

namespace marlune::tool {

// The name by which the user refers to a rule: any suffix of its path, from the rule's own name up
// to the path with the grammar's name in front, as in the grammar's error messages.
struct RuleName {
  std::string rule;
  std::string grammar;

  bool isOf(const Turn& turn) const;
};

// For each rule of that name: the phrase at its turn, and why the rule did or did not apply; "" if
// there is no such rule. Positions count from 0, a leading blank included, as in error messages.
//
//     Lengths.Units (3) at its turn: _E.([ten]).([km])._E
//       found at 2, ([km]), but the pre-context ([a]) does not precede it
//
// Every line ends with a line feed.
std::string whyText(const GrammarWalk& walk, const RuleName& name);

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_REWRITING_WHY_H_
