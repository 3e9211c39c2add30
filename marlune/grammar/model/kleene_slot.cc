#include "marlune/grammar/model/kleene_slot.h"

#include "marlune/grammar/base/make_shared_of.h"
#include "marlune/util/tq_utils.h"

namespace marlune {

std::shared_ptr<KleeneSlot> KleeneSlot::initFromPlist(const Value& plist) {
  return makeSharedOf<KleeneSlot>(SlotSequence::initFromPlist(plist));
}
std::shared_ptr<KleeneSlot> KleeneSlot::instanceFromPlist(const Value& plist) {
  return initFromPlist(plist);
}
std::shared_ptr<KleeneSlot> KleeneSlot::initWithArray(SlotArray members) {
  return makeSharedOf<KleeneSlot>(SlotSequence::initWithArray(std::move(members)));
}
std::shared_ptr<KleeneSlot> KleeneSlot::kleeneSlotWithArray(SlotArray members) {
  return initWithArray(std::move(members));
}

std::string KleeneSlot::description() const { return "(" + _joinedDescriptions(" . ") + ")*"; }

bool KleeneSlot::_matchesAt(const SlotRun&, std::size_t) const {
  TQUtils::systemLog("ERROR: 'matches' method called on KleeneSlot.");
  return false;
}

}  // namespace marlune
