#ifndef MARLUNE_DESKTOP_PLIST_TEXT_POOL_H_
#define MARLUNE_DESKTOP_PLIST_TEXT_POOL_H_

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "marlune/desktop/plist/memory_budget.h"

namespace marlune {

// Shares equal short texts of one file: a grammar of 2,000 rules contains "_lhs" 2,000 times. The
// pool lives as long as the parse; the texts live on with the values that share them.
class TextPool {
 public:
  static constexpr std::size_t kLongestShared = 32;  // bytes

  // `budget` is charged for the texts and must outlive the pool.
  explicit TextPool(MemoryBudget& budget) : _budget(budget) {}

  // A text equal to `text`, shared with earlier ones if it is short. Never null.
  std::shared_ptr<const std::string> textFor(std::string_view text);

 private:
  struct Slot {
    std::shared_ptr<const std::string> text;  // null if the slot is free
    std::size_t hash = 0;
  };

  std::shared_ptr<const std::string> _made(std::string_view text);
  void _grow();
  Slot* _slotFor(std::string_view text, std::size_t hash);

  MemoryBudget& _budget;
  std::vector<Slot> _slots = std::vector<Slot>(64);  // size is a power of two, at most 3/4 in use
  std::size_t _used = 0;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_PLIST_TEXT_POOL_H_
