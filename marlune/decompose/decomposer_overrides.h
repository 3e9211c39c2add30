#ifndef MARLUNE_DECOMPOSE_DECOMPOSER_OVERRIDES_H_
#define MARLUNE_DECOMPOSE_DECOMPOSER_OVERRIDES_H_

#include <string_view>

#include "marlune/decompose/decomposition.h"

namespace marlune {

class Decomposer;

// What a Decomposer asks before it searches by itself: anything that may dictate how a phrase, or a
// stretch of one, is said. DecomposerDelegate is the library's own.
//
// Threads: called on the thread that asks the decomposer, during the question.
class DecomposerOverrides {
 public:
  virtual ~DecomposerOverrides() = default;

  // The files that say the stretch whose decomposition key is `key`; null leaves it to the
  // decomposer. `isSubsetOfWhole` is false for a whole phrase, true for a part that the search
  // tries. `key` lives for the call only. An answer is taken as it is, may have any length, and
  // is final for that key. May ask `decomposer` itself and may change its delegate.
  virtual Decomposition decompositionOf(Decomposer& decomposer, std::string_view key,
                                        bool isSubsetOfWhole) = 0;
};

}  // namespace marlune

#endif  // MARLUNE_DECOMPOSE_DECOMPOSER_OVERRIDES_H_
