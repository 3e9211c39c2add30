#include "marlune/grammar/model/negation_slot.h"

#include "marlune/grammar/model/compound_slot_of.h"

namespace marlune {

template class CompoundSlotOf<NegationSlot>;

std::shared_ptr<NegationSlot> NegationSlot::negationSlotWithArray(SlotArray members) {
  return initWithArray(std::move(members));
}

std::string NegationSlot::description() const { return "~(" + _joinedDescriptions(" + ") + ")"; }

bool NegationSlot::_matchesAt(const SlotRun& target, std::size_t index) const {
  return !_anyMemberMatchesAt(target, index);
}

bool NegationSlot::_writesLines() const { return _anyMemberWritesLines(); }

}  // namespace marlune
