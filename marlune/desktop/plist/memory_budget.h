#ifndef MARLUNE_DESKTOP_PLIST_MEMORY_BUDGET_H_
#define MARLUNE_DESKTOP_PLIST_MEMORY_BUDGET_H_

#include <cstddef>

#include "marlune/desktop/plist/property_list_error.h"

namespace marlune {

// What reading one file may take: with the file's own bytes at most ten times its size and 16 MiB.
// A file of nothing but empty containers, or one whose objects share each other exponentially,
// would take far more; the parsers announce what they are about to make, and stop here instead.
class MemoryBudget {
 public:
  explicit MemoryBudget(std::size_t fileBytes) : _left(kTimesTheFile * fileBytes + kFixedBytes) {}

  void take(std::size_t bytes) {
    if (!tryTake(bytes)) {
      throw PropertyListError{"the list would take far more memory than its file is long"};
    }
  }

  // For what comes and goes, and where nothing may be thrown. Whether there was enough.
  bool tryTake(std::size_t bytes) noexcept {
    if (bytes > _left) return false;
    _left -= bytes;
    return true;
  }
  void giveBack(std::size_t bytes) noexcept { _left += bytes; }

  // What the parts of a tree cost, with the allocator's overhead and the parser's own stacks.
  static constexpr std::size_t kValue = 48;
  static constexpr std::size_t kEntry = 80;  // a value and its key's handle
  static constexpr std::size_t kContainer = 80;
  static constexpr std::size_t kIndexedEntry = 72;  // more, in a dictionary that is hashed
  static constexpr std::size_t costOfText(std::size_t length) {
    return length < 16 ? 64 : 64 + 24 + length;
  }

 private:
  // What is left of the bound after the file itself, and slack for what is not announced.
  static constexpr std::size_t kTimesTheFile = 9;
  static constexpr std::size_t kFixedBytes = std::size_t{12} << 20;

  std::size_t _left;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_PLIST_MEMORY_BUDGET_H_
