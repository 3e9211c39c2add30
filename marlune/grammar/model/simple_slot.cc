#include "marlune/grammar/model/simple_slot.h"

#include "marlune/grammar/base/make_shared_of.h"

namespace marlune {

std::shared_ptr<SimpleSlot> SimpleSlot::initWithCell(std::shared_ptr<Cell> cell) {
  return makeSharedOf<SimpleSlot>(std::move(cell));
}
std::shared_ptr<SimpleSlot> SimpleSlot::initFromPlist(const Value& plist) {
  return initWithCell(Cell::instanceFromPlist(plist));
}
std::shared_ptr<SimpleSlot> SimpleSlot::instanceFromPlist(const Value& plist) {
  return initFromPlist(plist);
}
std::shared_ptr<SimpleSlot> SimpleSlot::simpleSlotWithCell(std::shared_ptr<Cell> cell) {
  return initWithCell(std::move(cell));
}
std::shared_ptr<SimpleSlot> SimpleSlot::blank() { return initWithCell(Cell::blank()); }
std::shared_ptr<SimpleSlot> SimpleSlot::empty() { return initWithCell(Cell::init()); }

SimpleSlot* SimpleSlot::from(Slot* slot) {
  return slot && slot->kind() == Kind::simple ? static_cast<SimpleSlot*>(slot) : nullptr;
}
const SimpleSlot* SimpleSlot::from(const Slot* slot) { return from(const_cast<Slot*>(slot)); }

const std::string* SimpleSlot::content() const { return _cell ? _cell->content() : nullptr; }
const std::string* SimpleSlot::attributeForKey(std::string_view name) const {
  return _cell ? _cell->attributeForKey(name) : nullptr;
}

std::shared_ptr<SimpleSlot> SimpleSlot::overlayedOn(const SimpleSlot& other) const {
  if (!_cell || !other._cell) return initWithCell(nullptr);
  return initWithCell(_cell->overlayedOn(*other._cell));
}

std::string SimpleSlot::description() const { return _cell ? _cell->description() : "(null)"; }

bool SimpleSlot::_matchesAt(const SlotRun& target, std::size_t index) const {
  return _cell && _cell->matches(target.cellAt(index));
}

bool SimpleSlot::_writesLines() const { return _cell && _cell->_writesLines(); }

}  // namespace marlune
