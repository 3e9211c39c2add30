#include "marlune/grammar/model/slot.h"

#include "marlune/util/tq_utils.h"

namespace marlune {

const Cell* SlotRun::cellAt(std::size_t index) const {
  if (index >= _count) return nullptr;
  return _origin[static_cast<std::ptrdiff_t>(index) * _step]->_cellOrNull().get();
}

std::shared_ptr<Slot> Slot::initFromPlist(const Value&) {
  TQUtils::log(
      "ERROR: 'initFromPlist' method called on Slot which is an Abstract Class. Try using "
      "'instanceFromPlist' instead.");
  return nullptr;
}

const std::shared_ptr<Cell>& Slot::_cellOrNull() const {
  static const std::shared_ptr<Cell> kNoCell;
  return kNoCell;
}

bool Slot::_matchesAt(const SlotRun&, std::size_t) const {
  TQUtils::systemLog("ERROR: 'matches' method called on Slot which is an Abstract Class.");
  return false;
}

}  // namespace marlune
