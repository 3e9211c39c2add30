#include "marlune/grammar/model/negation_slot.h"

#include "marlune/grammar/base/make_shared_of.h"

namespace marlune {

std::shared_ptr<NegationSlot> NegationSlot::initFromPlist(const Value& plist) {
  return makeSharedOf<NegationSlot>(SlotSequence::initFromPlist(plist));
}
std::shared_ptr<NegationSlot> NegationSlot::instanceFromPlist(const Value& plist) {
  return initFromPlist(plist);
}
std::shared_ptr<NegationSlot> NegationSlot::initWithArray(SlotArray members) {
  return makeSharedOf<NegationSlot>(SlotSequence::initWithArray(std::move(members)));
}
std::shared_ptr<NegationSlot> NegationSlot::negationSlotWithArray(SlotArray members) {
  return initWithArray(std::move(members));
}

std::string NegationSlot::description() const { return "~(" + _joinedDescriptions(" + ") + ")"; }

bool NegationSlot::_matchesAt(const SlotRun& target, std::size_t index) const {
  return !_anyMemberMatchesAt(target, index);
}

bool NegationSlot::_writesLines() const { return _anyMemberWritesLines(); }

}  // namespace marlune
