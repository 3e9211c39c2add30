#ifndef MARLUNE_WORKBENCH_DERIVATION_WHY_H_
#define MARLUNE_WORKBENCH_DERIVATION_WHY_H_

#include <string>
#include <vector>

#include "marlune/workbench/derivation/grammar_walk.h"

namespace marlune {

// The name by which the user refers to a rule: any suffix of its path, from the rule's own name up
// to the path with the grammar's name in front, as in the grammar's error messages.
struct RuleName {
  std::string rule;
  std::string grammar;

  bool isOf(const Turn& turn) const;
};

// For each rule of that name: the phrase at its turn, and why the rule did or did not apply; no
// lines if there is no such rule. Positions count from 0, a leading blank included, as in error
// messages.
//
//     Lengths.Units (3) at its turn: _E.([ten]).([km])._E
//       found at 2, ([km]), but the pre-context ([a]) does not precede it
//
// The lines have no line feed at the end; a word may hold any character.
std::vector<std::string> whyLines(const GrammarWalk& walk, const RuleName& name);

}  // namespace marlune

#endif  // MARLUNE_WORKBENCH_DERIVATION_WHY_H_
