#include "marlune/grammar/model/simple_slot_sequence.h"

#include <algorithm>
#include <stdexcept>

#include "marlune/grammar/base/make_shared_of.h"
#include "marlune/grammar/base/padding.h"
#include "marlune/grammar/model/simple_slot.h"
#include "marlune/util/tq_utils.h"

namespace marlune {

namespace {

bool isBlank(const Slot& slot) {
  const std::shared_ptr<Cell>& cell = slot._cellOrNull();
  return cell && cell->isBlank();
}

}  // namespace

SlotArray SimpleSlotSequence::slotArrayWithStrings(const std::vector<std::string>& strings) {
  SlotArray slots;
  slots.reserve(strings.size());
  for (const std::string& word : strings) {
    slots.push_back(Slot::instanceFromPlist(Value::string(word)));
  }
  return slots;
}

std::shared_ptr<SimpleSlotSequence> SimpleSlotSequence::slotSequenceWithStrings(
    const std::vector<std::string>& strings) {
  return initWithArray(slotArrayWithStrings(strings));
}

std::shared_ptr<SimpleSlotSequence> SimpleSlotSequence::blankBufferedSlotSequenceWithStrings(
    const std::vector<std::string>& strings) {
  SlotArray slots = slotArrayWithStrings(strings);
  slots.insert(slots.begin(), SimpleSlot::blank());
  slots.push_back(SimpleSlot::blank());
  TQUtils::forDefaultLog(ZKPlistNotificationDefault, "Buffered slots: %@", slots);
  return initWithArray(std::move(slots));
}

std::shared_ptr<SimpleSlotSequence> SimpleSlotSequence::emptySlotSequence() {
  return initWithArray({});
}
std::shared_ptr<SimpleSlotSequence> SimpleSlotSequence::slotSequenceWithArray(SlotArray slots) {
  return initWithArray(std::move(slots));
}
std::shared_ptr<SimpleSlotSequence> SimpleSlotSequence::initWithArray(SlotArray slots) {
  return makeSharedOf<SimpleSlotSequence>(std::move(slots));
}
std::shared_ptr<SimpleSlotSequence> SimpleSlotSequence::initFromPlist(const Value& plist) {
  return initWithArray(_slotsFromPlist(plist));
}

std::shared_ptr<SimpleSlotSequence> SimpleSlotSequence::_withPendingSlots(
    std::unique_ptr<const PendingSlots> slots) {
  return makeSharedOf<SimpleSlotSequence>(std::move(slots));
}

SimpleSlotSequence& SimpleSlotSequence::pad() {
  addMissingBlanks(
      slots(), [](const std::shared_ptr<Slot>& slot) { return isBlank(*slot); },
      [] { return SimpleSlot::blank(); });
  return *this;
}

std::shared_ptr<SimpleSlotSequence> SimpleSlotSequence::_paddedCopy() const {
  auto copy = initWithArray(slots());
  copy->pad();
  return copy;
}

std::vector<std::string> SimpleSlotSequence::stringArray() const {
  if (_pendingSlots()) return _pendingSlots()->stringArray();
  std::vector<std::string> strings;
  for (const std::shared_ptr<Slot>& slot : slots()) {
    const std::shared_ptr<Cell>& cell = slot->_cellOrNull();
    if (cell && cell->hasContent()) {
      strings.push_back(cell->valueForKey(*AttributeDictionary::contentName())->text());
    }
  }
  return strings;
}

const AttributeValue* SimpleSlotSequence::valueForAttributeKey(const AttributeKey& key) const {
  if (key.index() < 0 || static_cast<std::size_t>(key.index()) >= count()) {
    throw std::out_of_range("attribute key's index " + std::to_string(key.index()) +
                            " outside the " + std::to_string(count()) + " slots");
  }
  const auto& cell = slots()[static_cast<std::size_t>(key.index())]->_cellOrNull();
  return cell ? cell->valueForKey(key.key()) : nullptr;
}

std::shared_ptr<SimpleSlotSequence> SimpleSlotSequence::overlayedOn(
    const SimpleSlotSequence& target) const {
  auto result = initWithArray(target.slots());
  SlotSequence::overlayedOn(result);
  return result;
}

std::shared_ptr<Slot> SimpleSlotSequence::first() const {
  if (empty()) throw std::out_of_range("the first slot of an empty phrase");
  return slots().front();
}

}  // namespace marlune
