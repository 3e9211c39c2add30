#ifndef MARLUNE_WORKBENCH_DERIVATION_TRACE_H_
#define MARLUNE_WORKBENCH_DERIVATION_TRACE_H_

#include <string>
#include <vector>

#include "marlune/workbench/derivation/grammar_walk.h"

namespace marlune {

// A trace for grammar authors. Lists, in order, the rules that changed the phrase (an attribute
// counts as a change), each with its path below the grammar, its order, its pattern, what it logged
// and the resulting phrase; then the number of rules. A rule that only logged is listed without a
// phrase.
//
//     _E.([ten]).([km])._E
//       Lengths.Units (3): ([km]) after ([ten])
//         _E.([ten]).([kilometers]){kind=unit}._E
//     1 of 14 rules changed the phrase
//
// The lines have no line feed at the end; a word may hold any character.
std::vector<std::string> readableTrace(const GrammarWalk& walk);

// A rule's path and order, "Lengths.Units (3)".
std::string nameOf(const Turn& turn);

}  // namespace marlune

#endif  // MARLUNE_WORKBENCH_DERIVATION_TRACE_H_
