#ifndef MARLUNE_BENCH_LIMITS_REFUSED_INPUTS_H_
#define MARLUNE_BENCH_LIMITS_REFUSED_INPUTS_H_

#include <string>
#include <string_view>

namespace marlune {

// The most expensive known files that a bound stops.

// Grammars of one endless rule each. Count increments the binary number after the word "t". Grow
// lengthens "b c a … a", and from each word searches for c after nested repetitions; GrowAndTell
// does the same after comparisons that write lines.
std::string endlessRules();

// Twenty chunks, each inserted twice into the previous one, without a circle.
std::string explodingInserts();

// An XML list of the largest accepted size, with as many of the element as fit.
std::string largestListOf(std::string_view element);

}  // namespace marlune

#endif  // MARLUNE_BENCH_LIMITS_REFUSED_INPUTS_H_
