#ifndef MARLUNE_DECOMPOSE_DECOMPOSITION_H_
#define MARLUNE_DECOMPOSE_DECOMPOSITION_H_

#include <memory>
#include <string>
#include <vector>

namespace marlune {

// The recordings that say a phrase, in playing order: file names without extension. Null when the
// phrase cannot be said. The list may also be held by a cache, so it is shared and never changes.
using Decomposition = std::shared_ptr<const std::vector<std::string>>;

}  // namespace marlune

#endif  // MARLUNE_DECOMPOSE_DECOMPOSITION_H_
