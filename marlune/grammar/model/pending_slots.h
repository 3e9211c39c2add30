#ifndef MARLUNE_GRAMMAR_MODEL_PENDING_SLOTS_H_
#define MARLUNE_GRAMMAR_MODEL_PENDING_SLOTS_H_

#include <string>
#include <vector>

#include "marlune/grammar/model/slot_run.h"

namespace marlune {

// The slots of a phrase that are made only when somebody looks at them. Most phrases are asked for
// their words alone.
class PendingSlots {
 public:
  virtual ~PendingSlots() = default;

  // The slots. Asked once.
  virtual SlotArray slots() const = 0;

  // What SimpleSlotSequence::stringArray answers for them.
  virtual std::vector<std::string> stringArray() const = 0;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_PENDING_SLOTS_H_
