#ifndef MARLUNE_BENCH_LIMITS_REFUSED_INPUTS_H_
#define MARLUNE_BENCH_LIMITS_REFUSED_INPUTS_H_

#include <string>
#include <string_view>

namespace marlune {

// The dearest files known that a bound stops.

// Grammars of one rule each that never come to an end. Count counts the binary number behind the
// word "t" up. Grow makes "b c a … a" longer, and looks for c behind repetitions, one inside the
// other, from each word; GrowAndTell does so behind comparisons that write lines.
std::string endlessRules();

// Twenty chunks, each twice in the one before, without a circle.
std::string explodingInserts();

// An XML list of the largest size that is read, of as many of the element as fit.
std::string largestListOf(std::string_view element);

}  // namespace marlune

#endif  // MARLUNE_BENCH_LIMITS_REFUSED_INPUTS_H_
