#ifndef MARLUNE_DESKTOP_PLIST_MEMORY_BUDGET_H_
#define MARLUNE_DESKTOP_PLIST_MEMORY_BUDGET_H_

#include <algorithm>
#include <cstddef>

#include "marlune/desktop/plist/property_list_error.h"
#include "marlune/platform/value.h"

namespace marlune {

// The memory that reading one file may take, including the file's own bytes: 26 times its size plus
// 16 MiB, and at most 656 MiB. The parsers charge every allocation in advance and stop when the
// budget is exhausted.
//
// The factor covers the densest possible list in which no container is shared, so no such list is
// refused: a reference of one byte becomes a Value of 24. Only lists that share containers, each of
// which is copied for every referrer, can exceed it.
class MemoryBudget {
 public:
  explicit MemoryBudget(std::size_t bytes) : _left(bytes) {}

  // The memory that reading a file of this size may take in addition to the file's bytes.
  static MemoryBudget besideFile(std::size_t fileBytes) {
    return MemoryBudget(std::min(kTimesTheFile * fileBytes + kFixedBytes, kMostBytes - fileBytes));
  }

  void take(std::size_t bytes) {
    if (!tryTake(bytes)) {
      throw PropertyListError{"the list would take far more memory than its file is long"};
    }
  }

  // For temporary memory, and for code that must not throw. Returns whether there was enough.
  bool tryTake(std::size_t bytes) noexcept {
    if (bytes > _left) {
      _hasRefused = true;
      return false;
    }
    _left -= bytes;
    return true;
  }
  void giveBack(std::size_t bytes) noexcept { _left += bytes; }

  // Whether tryTake ever returned false. Distinguishes this bound from the system's out of memory.
  bool hasRefused() const { return _hasRefused; }

  // Reserves room for `count` elements or characters in a vector or string that grows step by step.
  // Charges the peak usage, which includes the old buffer while its content is moved.
  template <typename Sequence>
  void makeRoom(Sequence& sequence, std::size_t count) {
    constexpr std::size_t kElement = sizeof(typename Sequence::value_type);
    const std::size_t former = sequence.capacity();
    if (count <= former) return;
    const std::size_t room = std::max(count, former + former / 2);
    take(room * kElement);
    sequence.reserve(room);
    take((sequence.capacity() - room) * kElement);  // a string at least doubles its capacity
    giveBack(former * kElement);
  }

  // The cost of the parts of a tree, including the allocator's overhead. A number costs only the
  // Value that holds it.
  static constexpr std::size_t costOfArray(std::size_t elements) {
    return kContainer + (elements > 0 ? kBlock + elements * sizeof(Value) : 0);
  }
  static constexpr std::size_t costOfDictionary(std::size_t entries) {
    const bool isIndexed = entries > Dictionary::kLargestLinear;
    return kContainer + (entries > 0 ? kBlock : 0) +
           entries * (sizeof(Dictionary::Entry) + (isIndexed ? kIndexedEntry : 0));
  }
  static constexpr std::size_t costOfText(std::size_t length) {
    return length < 16 ? 64 : 64 + 24 + length;
  }

 private:
  static constexpr std::size_t kContainer = 64;     // the object and its reference count
  static constexpr std::size_t kBlock = 16;         // the allocator's overhead per block
  static constexpr std::size_t kIndexedEntry = 60;  // a node and its share of the hash table

  // The rest of the bound after the file itself, and slack for uncounted allocations.
  static constexpr std::size_t kTimesTheFile = 25;
  static constexpr std::size_t kFixedBytes = std::size_t{12} << 20;
  static constexpr std::size_t kMostBytes = std::size_t{652} << 20;

  std::size_t _left;
  bool _hasRefused = false;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_PLIST_MEMORY_BUDGET_H_
