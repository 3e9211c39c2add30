#include "marlune/grammar/model/disjunction_slot.h"

#include "marlune/grammar/base/make_shared_of.h"

namespace marlune {

std::shared_ptr<DisjunctionSlot> DisjunctionSlot::initFromPlist(const Value& plist) {
  return makeSharedOf<DisjunctionSlot>(SlotSequence::initFromPlist(plist));
}
std::shared_ptr<DisjunctionSlot> DisjunctionSlot::instanceFromPlist(const Value& plist) {
  return initFromPlist(plist);
}
std::shared_ptr<DisjunctionSlot> DisjunctionSlot::initWithArray(SlotArray members) {
  return makeSharedOf<DisjunctionSlot>(SlotSequence::initWithArray(std::move(members)));
}
std::shared_ptr<DisjunctionSlot> DisjunctionSlot::disjunctionSlotWithArray(SlotArray members) {
  return initWithArray(std::move(members));
}

std::string DisjunctionSlot::description() const { return "(" + _joinedDescriptions(" + ") + ")"; }

bool DisjunctionSlot::_matchesAt(const SlotRun& target, std::size_t index) const {
  return _anyMemberMatchesAt(target, index);
}

bool DisjunctionSlot::_writesLines() const { return _anyMemberWritesLines(); }

}  // namespace marlune
