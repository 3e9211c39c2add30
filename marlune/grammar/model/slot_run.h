#ifndef MARLUNE_GRAMMAR_MODEL_SLOT_RUN_H_
#define MARLUNE_GRAMMAR_MODEL_SLOT_RUN_H_

#include <cstddef>
#include <memory>
#include <vector>

#include "marlune/platform/visibility.h"

namespace marlune {

class Cell;
class Slot;

using SlotArray = std::vector<std::shared_ptr<Slot>>;

// The slots of a phrase as seen by a pattern: from the first to the last, or backwards. Refers to
// the array without copying it; the array must not change during use.
class MARLUNE_API SlotRun {
 public:
  static SlotRun forwards(const SlotArray& slots) { return {slots.data(), slots.size(), 1}; }
  static SlotRun backwards(const SlotArray& slots) {
    return {slots.data() + slots.size(), slots.size(), -1};
  }

  std::size_t count() const { return _count; }

  // The cell at `index`, from 0 in the direction of the run; nullptr past the end and where the
  // slot is not a simple one.
  const Cell* cellAt(std::size_t index) const;

 private:
  SlotRun(const std::shared_ptr<Slot>* origin, std::size_t count, std::ptrdiff_t step)
      : _origin(step > 0 ? origin : origin - (count > 0 ? 1 : 0)), _count(count), _step(step) {}

  const std::shared_ptr<Slot>* _origin;  // the slot at index 0
  std::size_t _count;
  std::ptrdiff_t _step;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_SLOT_RUN_H_
