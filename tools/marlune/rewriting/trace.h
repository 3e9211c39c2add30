#ifndef MARLUNE_TOOLS_MARLUNE_REWRITING_TRACE_H_
#define MARLUNE_TOOLS_MARLUNE_REWRITING_TRACE_H_

#include <string>

#include "tools/marlune/rewriting/grammar_walk.h"

namespace marlune::tool {

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
// Every line ends with a line feed.
std::string readableTrace(const GrammarWalk& walk);

// A rule's path and order, "Lengths.Units (3)".
std::string nameOf(const Turn& turn);

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_REWRITING_TRACE_H_
