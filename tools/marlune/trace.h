#ifndef MARLUNE_TOOLS_MARLUNE_TRACE_H_
#define MARLUNE_TOOLS_MARLUNE_TRACE_H_

#include <string>
#include <vector>

namespace marlune::tool {

// What a grammar logged while it rewrote one phrase. Phrases stand in their printed form.
struct Trace {
  std::string before;
  std::vector<std::string> lines;
  std::string after;
};

// The trace as a grammar author reads it: the rules that changed the phrase, in order, each with
// its place among its siblings, what it looks for and what the phrase became, and a count of all.
//
//     _E.([ten]).([km])._E
//       Units (3): ([km]) after ([ten])
//         _E.([ten]).([kilometers])._E
//     1 of 14 rules changed the phrase
//
// Every line ends with a line feed.
std::string readableTrace(const Trace& trace);

// Every line that was logged, as it is.
std::string rawTrace(const Trace& trace);

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_TRACE_H_
