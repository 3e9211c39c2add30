#include "marlune/grammar/model/kleene_slot.h"

#include "marlune/grammar/model/compound_slot_of.h"
#include "marlune/util/tq_utils.h"

namespace marlune {

template class CompoundSlotOf<KleeneSlot>;

std::shared_ptr<KleeneSlot> KleeneSlot::kleeneSlotWithArray(SlotArray members) {
  return initWithArray(std::move(members));
}

std::string KleeneSlot::description() const { return "(" + _joinedDescriptions(" . ") + ")*"; }

bool KleeneSlot::_matchesAt(const SlotRun&, std::size_t) const {
  TQUtils::systemLog("ERROR: 'matches' method called on KleeneSlot.");
  return false;
}

}  // namespace marlune
