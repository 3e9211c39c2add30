#ifndef MARLUNE_DECOMPOSE_DECOMPOSER_OVERRIDES_H_
#define MARLUNE_DECOMPOSE_DECOMPOSER_OVERRIDES_H_

#include <string_view>

#include "marlune/decompose/decomposition.h"
#include "marlune/platform/visibility.h"

namespace marlune {

class Decomposer;

// The delegate of a Decomposer, asked before every search: it may decide how a phrase, or a stretch
// of one, is said. DecomposerDelegate is the library's implementation.
//
// Threads: called during a call to the decomposer, on the same thread.
class MARLUNE_API DecomposerOverrides {
 public:
  virtual ~DecomposerOverrides() = default;

  // The files that say the stretch whose decomposition key is `key`; null leaves it to the
  // decomposer. `isSubsetOfWhole` is false for a whole phrase, true for a part that the search
  // tries. `key` is valid during the call only. The answer is used unchanged, may have any length,
  // and is final for that key. The implementation may call `decomposer` and may change its
  // delegate.
  virtual Decomposition decompositionOf(Decomposer& decomposer, std::string_view key,
                                        bool isSubsetOfWhole) = 0;
};

}  // namespace marlune

#endif  // MARLUNE_DECOMPOSE_DECOMPOSER_OVERRIDES_H_
