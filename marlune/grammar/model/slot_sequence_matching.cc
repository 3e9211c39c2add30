// Where a sequence matches: apart from the sequence itself, as the matcher looks into compound
// slots, which hold sequences.
#include "marlune/grammar/model/slot_sequence.h"

#include <algorithm>

#include "marlune/grammar/model/compound_slot.h"
#include "marlune/grammar/model/sequence_matcher.h"
#include "marlune/grammar/model/simple_slot_sequence.h"

namespace marlune {

bool Slot::matches(const SlotSequence& target) const {
  return _matchesAt(SlotRun::forwards(target.slots()), 0);
}

std::vector<std::int32_t> SlotSequence::indicesOfOccurrencesInTarget(
    const SlotSequence& target) const {
  std::uint64_t steps = 0;
  return _indicesOfOccurrences(target, steps);
}

std::vector<std::int32_t> SlotSequence::_indicesOfOccurrences(const SlotSequence& target,
                                                              std::uint64_t& steps) const {
  SequenceMatcher matcher(slots(), SlotRun::forwards(target.slots()));
  std::vector<std::int32_t> indices;
  for (std::size_t index = 0; index < target.count(); ++index) {
    if (matcher.matchesFrom(index)) indices.push_back(static_cast<std::int32_t>(index));
  }
  steps += matcher.steps();
  return indices;
}

std::shared_ptr<SimpleSlotSequence> SlotSequence::occurrenceOfSequence(const SlotSequence& sequence,
                                                                       std::size_t atIndex) const {
  if (atIndex > count() || sequence.count() > count() - atIndex) return nullptr;
  const auto begin = slots().begin() + static_cast<std::ptrdiff_t>(atIndex);
  return SimpleSlotSequence::initWithArray(
      {begin, begin + static_cast<std::ptrdiff_t>(sequence.count())});
}

bool SlotSequence::_matchesAt(const SlotRun& target, std::size_t index) const {
  return SequenceMatcher(slots(), target).matchesFrom(index);
}

// Within a sequence a Kleene slot is not asked itself, and slots of other kinds not at all.
bool SlotSequence::_writesLines() const {
  return std::ranges::any_of(slots(), [](const std::shared_ptr<Slot>& slot) {
    switch (slot->kind()) {
      case Kind::kleene:
        return static_cast<const CompoundSlot&>(*slot).slots()->_writesLines();
      case Kind::simple:
      case Kind::disjunction:
      case Kind::negation:
        return slot->_writesLines();
      case Kind::sequence:
      case Kind::other:
        break;
    }
    return false;
  });
}

}  // namespace marlune
