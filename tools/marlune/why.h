#ifndef MARLUNE_TOOLS_MARLUNE_WHY_H_
#define MARLUNE_TOOLS_MARLUNE_WHY_H_

#include <string>

#include "tools/marlune/grammar_walk.h"

namespace marlune::tool {

// What an author calls a rule: the end of its path, from its own name alone up to the path with the
// grammar's name in front, as the grammar's error messages have it.
struct RuleName {
  std::string rule;
  std::string grammar;

  bool isOf(const Turn& turn) const;
};

// For each rule of that name: the phrase at its turn, and why the rule did or did not fire there;
// "" when there is none. Positions count from 0, a leading blank included, as in error messages.
//
//     Lengths.Units (3) at its turn: _E.([ten]).([km])._E
//       found at 2, ([km]), but the pre-context ([a]) does not stand before it
//
// Every line ends with a line feed.
std::string whyText(const GrammarWalk& walk, const RuleName& name);

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_WHY_H_
