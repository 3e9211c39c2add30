#ifndef MARLUNE_UTIL_OPEN_ADDRESSING_H_
#define MARLUNE_UTIL_OPEN_ADDRESSING_H_

#include <cstddef>

namespace marlune {

// Linear probing: the index of the first slot, from the place of the hash on, at which the search
// ends. `endsAt` is given an index and returns whether that slot is free or holds what is searched
// for. REQUIRES: `size` is a power of two, and the search ends somewhere.
template <typename EndsAt>
std::size_t slotFor(std::size_t hash, std::size_t size, EndsAt endsAt) {
  const std::size_t mask = size - 1;
  std::size_t at = hash & mask;
  while (!endsAt(at)) at = (at + 1) & mask;
  return at;
}

}  // namespace marlune

#endif  // MARLUNE_UTIL_OPEN_ADDRESSING_H_
