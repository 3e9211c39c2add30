#ifndef MARLUNE_TESTS_REFERENCE_REFERENCE_GAPS_H_
#define MARLUNE_TESTS_REFERENCE_REFERENCE_GAPS_H_

#include <cstddef>
#include <string>
#include <vector>

#include "reference/reference_decomposer.h"

namespace marlune {

// The words of a phrase that no recording covers: tries every way to leave words out. Of those that
// leave out the fewest, the first in the order of the bits leaves out words furthest to the right.
inline std::vector<std::size_t> referenceGaps(const std::vector<std::string>& files,
                                              const std::vector<std::string>& words) {
  std::vector<std::size_t> best(words.size() + 1);
  for (std::size_t kept = 0; kept < (std::size_t{1} << words.size()); ++kept) {
    std::vector<std::size_t> gaps;
    bool isSaid = true;
    std::vector<std::string> run;
    for (std::size_t i = 0; i <= words.size(); ++i) {
      if (i < words.size() && (kept >> (words.size() - 1 - i) & 1)) {
        run.push_back(words[i]);
        continue;
      }
      isSaid = isSaid && (run.empty() ||
                          ReferenceDecomposer(files).optimalDecompositionOf(run, true).has_value());
      run.clear();
      if (i < words.size()) gaps.push_back(i);
    }
    if (isSaid && (gaps.size() < best.size() || (gaps.size() == best.size() && gaps > best))) {
      best = gaps;
    }
  }
  return best;
}

}  // namespace marlune

#endif  // MARLUNE_TESTS_REFERENCE_REFERENCE_GAPS_H_
