#include "marlune/grammar/model/disjunction_slot.h"

#include "marlune/grammar/model/compound_slot_of.h"

namespace marlune {

template class CompoundSlotOf<DisjunctionSlot>;

std::shared_ptr<DisjunctionSlot> DisjunctionSlot::disjunctionSlotWithArray(SlotArray members) {
  return initWithArray(std::move(members));
}

std::string DisjunctionSlot::description() const { return "(" + _joinedDescriptions(" + ") + ")"; }

bool DisjunctionSlot::_matchesAt(const SlotRun& target, std::size_t index) const {
  return _anyMemberMatchesAt(target, index);
}

bool DisjunctionSlot::_writesLines() const { return _anyMemberWritesLines(); }

}  // namespace marlune
