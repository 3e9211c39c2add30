#include "marlune/grammar/model/compound_slot.h"

#include <algorithm>

#include "marlune/util/tq_utils.h"

namespace marlune {

std::string CompoundSlot::description() const {
  TQUtils::systemLog(
      "ERROR: 'description' method called on CompoundSlot, which is an abstract class.");
  return "";
}

bool CompoundSlot::_matchesAt(const SlotRun&, std::size_t) const {
  TQUtils::systemLog("ERROR: 'matches' method called on CompoundSlot, which is an abstract class.");
  return false;
}

std::shared_ptr<Slot> CompoundSlot::_withMembers(const SlotSequence&) const {
  TQUtils::systemLog(
      "ERROR: 'reversed' method called on CompoundSlot, which is an abstract class.");
  return nullptr;
}

std::string CompoundSlot::_joinedDescriptions(std::string_view separator) const {
  std::string joined;
  for (const std::shared_ptr<Slot>& member : _slots->slots()) {
    if (&member != &_slots->slots().front()) joined += separator;
    joined += member->description();
  }
  return joined;
}

bool CompoundSlot::_anyMemberMatchesAt(const SlotRun& target, std::size_t index) const {
  return std::ranges::any_of(_slots->slots(),
                             [&](const auto& member) { return member->_matchesAt(target, index); });
}

bool CompoundSlot::_anyMemberWritesLines() const {
  return std::ranges::any_of(_slots->slots(),
                             [](const auto& member) { return member->_writesLines(); });
}

}  // namespace marlune
