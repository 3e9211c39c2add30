#include "marlune/grammar/model/slot_sequence.h"

#include <algorithm>
#include <stdexcept>

#include "marlune/grammar/base/grammar_error.h"
#include "marlune/grammar/base/make_shared_of.h"
#include "marlune/grammar/model/simple_slot.h"
#include "marlune/util/tq_utils.h"

namespace marlune {

namespace {

SlotArray::const_iterator at(const SlotArray& slots, std::size_t index) {
  return slots.begin() + static_cast<std::ptrdiff_t>(index);
}

void requireWithin(std::size_t index, std::size_t count) {
  if (index > count) {
    throw std::out_of_range("index " + std::to_string(index) + " beyond the " +
                            std::to_string(count) + " slots of a sequence");
  }
}

}  // namespace

std::shared_ptr<SlotSequence> SlotSequence::emptySlotSequence() { return initWithArray({}); }
std::shared_ptr<SlotSequence> SlotSequence::slotSequenceWithArray(SlotArray slots) {
  return initWithArray(std::move(slots));
}
std::shared_ptr<SlotSequence> SlotSequence::initWithArray(SlotArray slots) {
  return makeSharedOf<SlotSequence>(std::move(slots));
}
std::shared_ptr<SlotSequence> SlotSequence::initFromPlist(const Value& plist) {
  return initWithArray(_slotsFromPlist(plist));
}

SlotArray SlotSequence::_slotsFromPlist(const Value& plist) {
  if (plist.asArray()) return _slotsFromPlist(plist.asArray()->elements(), /*position=*/0);
  TQUtils::systemLog("Error!");
  return {};
}

SlotArray SlotSequence::_slotsFromPlist(std::span<const Value> elements, std::size_t position) {
  SlotArray slots;
  slots.reserve(elements.size());
  for (const Value& element : elements) {
    slots.push_back(GrammarError::within(position++, [&element] {
      auto slot = Slot::instanceFromPlist(element);
      if (!slot) {
        throw GrammarError("", "an array that is not a slot: it does not begin with *, + or ~");
      }
      return slot;
    }));
  }
  return slots;
}

std::shared_ptr<Slot> SlotSequence::first() const { return empty() ? nullptr : slots().front(); }

std::shared_ptr<SlotSequence> SlotSequence::rest() const {
  return slotSubsequenceFromIndex(empty() ? 0 : 1);
}

SlotArray SlotSequence::subsequenceFromIndex(std::size_t index) const {
  requireWithin(index, count());
  return {at(slots(), index), slots().end()};
}

std::shared_ptr<SlotSequence> SlotSequence::slotSubsequenceFromIndex(std::size_t index) const {
  return initWithArray(subsequenceFromIndex(index));
}

std::shared_ptr<SlotSequence> SlotSequence::portionPrecedingOccurrenceOfSequence(
    const SlotSequence&, std::size_t atIndex) const {
  requireWithin(atIndex, count());
  return initWithArray({slots().begin(), at(slots(), atIndex)});
}

std::shared_ptr<SlotSequence> SlotSequence::portionFollowingOccurrenceOfSequence(
    const SlotSequence& sequence, std::size_t atIndex) const {
  if (atIndex > count() || sequence.count() > count() - atIndex) return nullptr;
  return slotSubsequenceFromIndex(atIndex + sequence.count());
}

std::shared_ptr<SlotSequence> SlotSequence::reversed() const {
  SlotArray backwards;
  backwards.reserve(count());
  std::transform(slots().rbegin(), slots().rend(), std::back_inserter(backwards),
                 [](const auto& slot) { return slot->reversed(); });
  return initWithArray(std::move(backwards));
}

void SlotSequence::_makeSlots() const {
  _slots = _pending->slots();
  _pending.reset();
}

std::shared_ptr<Slot> SlotSequence::_reversed() { return reversed(); }

std::shared_ptr<SlotSequence> SlotSequence::overlayedOn(
    std::shared_ptr<SlotSequence> target) const {
  for (std::size_t i = 0; i < std::min(count(), target->count()); ++i) {
    const SimpleSlot* overlay = SimpleSlot::from(slots()[i].get());
    const SimpleSlot* under = SimpleSlot::from(target->slots()[i].get());
    if (overlay && under) target->slots()[i] = overlay->overlayedOn(*under);
  }
  return target;
}

std::string SlotSequence::description() const {
  std::string joined;
  for (const std::shared_ptr<Slot>& slot : slots()) {
    if (&slot != &slots().front()) joined += '.';
    joined += slot->description();
  }
  return joined;
}

}  // namespace marlune
