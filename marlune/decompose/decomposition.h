#ifndef MARLUNE_DECOMPOSE_DECOMPOSITION_H_
#define MARLUNE_DECOMPOSE_DECOMPOSITION_H_

#include <memory>
#include <string>
#include <vector>

namespace marlune {

// The recordings that say a phrase, in the order in which they are to be played: file names
// without extension. Null when the phrase cannot be said. May be the very list that a cache holds,
// so it is shared and never changed.
using Decomposition = std::shared_ptr<const std::vector<std::string>>;

}  // namespace marlune

#endif  // MARLUNE_DECOMPOSE_DECOMPOSITION_H_
