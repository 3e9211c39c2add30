#ifndef MARLUNE_GRAMMAR_MODEL_COMPOUND_SLOT_OF_H_
#define MARLUNE_GRAMMAR_MODEL_COMPOUND_SLOT_OF_H_

#include <memory>
#include <utility>

#include "marlune/grammar/base/make_shared_of.h"
#include "marlune/grammar/model/compound_slot.h"

namespace marlune {

// The definitions of CompoundSlotOf. The source of each kind instantiates them.

template <typename Self>
std::shared_ptr<Self> CompoundSlotOf<Self>::initFromPlist(const Value& plist) {
  return makeSharedOf<Self>(SlotSequence::initFromPlist(plist));
}

template <typename Self>
std::shared_ptr<Self> CompoundSlotOf<Self>::instanceFromPlist(const Value& plist) {
  return initFromPlist(plist);
}

template <typename Self>
std::shared_ptr<Self> CompoundSlotOf<Self>::initWithArray(SlotArray members) {
  return makeSharedOf<Self>(SlotSequence::initWithArray(std::move(members)));
}

template <typename Self>
std::shared_ptr<Slot> CompoundSlotOf<Self>::_reversed() {
  return initWithArray(slots()->reversed()->slots());
}

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_COMPOUND_SLOT_OF_H_
