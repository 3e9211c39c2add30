#ifndef MARLUNE_GRAMMAR_MODEL_PENDING_SLOTS_H_
#define MARLUNE_GRAMMAR_MODEL_PENDING_SLOTS_H_

#include <string>
#include <vector>

#include "marlune/grammar/model/slot_run.h"
#include "marlune/platform/visibility.h"

namespace marlune {

// The slots of a phrase, created on demand. Most callers need only the words of a phrase.
class MARLUNE_API PendingSlots {
 public:
  virtual ~PendingSlots() = default;

  // The slots. Called once.
  virtual SlotArray slots() const = 0;

  // The result of SimpleSlotSequence::stringArray for the slots.
  virtual std::vector<std::string> stringArray() const = 0;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_PENDING_SLOTS_H_
