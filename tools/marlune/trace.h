#ifndef MARLUNE_TOOLS_MARLUNE_TRACE_H_
#define MARLUNE_TOOLS_MARLUNE_TRACE_H_

#include <string>

#include "tools/marlune/grammar_walk.h"

namespace marlune::tool {

// The trace as a grammar author reads it: the rules that changed the phrase, be it nothing but an
// attribute, in order, each with its path below the grammar, its place among its siblings, what it
// looks for, what it logged and what the phrase became, and a count of all. A rule that only logged
// shows too, without a phrase.
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

#endif  // MARLUNE_TOOLS_MARLUNE_TRACE_H_
