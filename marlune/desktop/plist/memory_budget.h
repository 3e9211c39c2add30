#ifndef MARLUNE_DESKTOP_PLIST_MEMORY_BUDGET_H_
#define MARLUNE_DESKTOP_PLIST_MEMORY_BUDGET_H_

#include <algorithm>
#include <cstddef>

#include "marlune/desktop/plist/property_list_error.h"
#include "marlune/platform/value.h"

namespace marlune {

// What reading one file may take, its own bytes included: 26 times its size and 16 MiB, and never
// more than 656 MiB. The parsers announce what they are about to make, and stop here instead of
// making more.
//
// The factor is that of the densest lists in which no container stands twice, so that it refuses
// none of them: a reference of one byte becomes a Value of 24. A list with more is one whose
// objects share each other, so that each is copied again and again.
class MemoryBudget {
 public:
  explicit MemoryBudget(std::size_t bytes) : _left(bytes) {}

  // What reading a file of this size may take beside the file's own bytes.
  static MemoryBudget besideFile(std::size_t fileBytes) {
    return MemoryBudget(std::min(kTimesTheFile * fileBytes + kFixedBytes, kMostBytes - fileBytes));
  }

  void take(std::size_t bytes) {
    if (!tryTake(bytes)) {
      throw PropertyListError{"the list would take far more memory than its file is long"};
    }
  }

  // For what comes and goes, and where nothing may be thrown. Whether there was enough.
  bool tryTake(std::size_t bytes) noexcept {
    if (bytes > _left) {
      _hasRefused = true;
      return false;
    }
    _left -= bytes;
    return true;
  }
  void giveBack(std::size_t bytes) noexcept { _left += bytes; }

  // Whether there was not enough once. The system may run out of memory while it is false.
  bool hasRefused() const { return _hasRefused; }

  // Room for `count` elements or characters in a vector or string that grows step by step. Counts
  // what it holds at each moment: the former room, too, while its content is moved.
  template <typename Sequence>
  void makeRoom(Sequence& sequence, std::size_t count) {
    constexpr std::size_t kElement = sizeof(typename Sequence::value_type);
    const std::size_t former = sequence.capacity();
    if (count <= former) return;
    const std::size_t room = std::max(count, former + former / 2);
    take(room * kElement);
    sequence.reserve(room);
    take((sequence.capacity() - room) * kElement);  // a string doubles its room at least
    giveBack(former * kElement);
  }

  // What the parts of a tree cost, the allocator's overhead included. A number costs no more than
  // the Value that holds it.
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
  static constexpr std::size_t kContainer = 64;     // the object and its count of holders
  static constexpr std::size_t kBlock = 16;         // the allocator's share of another block
  static constexpr std::size_t kIndexedEntry = 60;  // a node and its share of the table

  // What is left of the bound after the file itself, and slack for what is not announced.
  static constexpr std::size_t kTimesTheFile = 25;
  static constexpr std::size_t kFixedBytes = std::size_t{12} << 20;
  static constexpr std::size_t kMostBytes = std::size_t{652} << 20;

  std::size_t _left;
  bool _hasRefused = false;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_PLIST_MEMORY_BUDGET_H_
