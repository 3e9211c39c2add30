#ifndef MARLUNE_GRAMMAR_MODEL_SLOT_SEQUENCE_H_
#define MARLUNE_GRAMMAR_MODEL_SLOT_SEQUENCE_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "marlune/grammar/model/pending_slots.h"
#include "marlune/grammar/model/slot.h"
#include "marlune/platform/visibility.h"

namespace marlune {

class SimpleSlotSequence;

// An ordered run of slots: the pattern language of the grammar. Matching always checks whether the
// target begins with the pattern. Sequences may share slots; each sequence owns its array. All
// positions count from 0.
class MARLUNE_API SlotSequence : public Slot {
 public:
  static std::shared_ptr<SlotSequence> emptySlotSequence();
  static std::shared_ptr<SlotSequence> slotSequenceWithArray(SlotArray slots);
  static std::shared_ptr<SlotSequence> initWithArray(SlotArray slots);

  // From an array of slot elements. Anything else gives an empty sequence, after a line straight to
  // the system log. Throws GrammarError when an element is not a slot.
  static std::shared_ptr<SlotSequence> initFromPlist(const Value& plist);

  Kind kind() const override { return Kind::sequence; }

  // The array itself, not a copy: changing it changes the sequence. No element may be null.
  SlotArray& slots() {
    if (_pending) _makeSlots();
    return _slots;
  }
  const SlotArray& slots() const {
    if (_pending) _makeSlots();
    return _slots;
  }
  void setSlots(SlotArray slots) { this->slots() = std::move(slots); }

  std::shared_ptr<Slot> first() const;         // nullptr when empty
  std::shared_ptr<SlotSequence> rest() const;  // all but the first; empty when empty
  std::size_t count() const { return slots().size(); }
  bool empty() const { return slots().empty(); }

  // The slots from `index` to the end. Throws std::out_of_range past the count.
  SlotArray subsequenceFromIndex(std::size_t index) const;
  std::shared_ptr<SlotSequence> slotSubsequenceFromIndex(std::size_t index) const;

  // The slots [atIndex, atIndex + sequence.count()) as a phrase. Only the length of `sequence` is
  // used: whether it matches there is the caller's business. nullptr when the run does not fit.
  std::shared_ptr<SimpleSlotSequence> occurrenceOfSequence(const SlotSequence& sequence,
                                                           std::size_t atIndex) const;

  // The slots [0, atIndex); `sequence` is not used. Throws std::out_of_range past the count.
  std::shared_ptr<SlotSequence> portionPrecedingOccurrenceOfSequence(const SlotSequence& sequence,
                                                                     std::size_t atIndex) const;

  // The slots from atIndex + sequence.count() on, possibly none; nullptr when that is past the end.
  std::shared_ptr<SlotSequence> portionFollowingOccurrenceOfSequence(const SlotSequence& sequence,
                                                                     std::size_t atIndex) const;

  // A new sequence in reverse order, with each slot itself reversed.
  std::shared_ptr<SlotSequence> reversed() const;

  // Every position of the target, ascending, at which the rest of the target begins with this
  // pattern, overlapping ones included. An empty pattern occurs everywhere, except in an empty
  // target, where it does not occur.
  std::vector<std::int32_t> indicesOfOccurrencesInTarget(const SlotSequence& target) const;

  // The same; adds the work done, as SequenceMatcher counts it, to `steps`.
  std::vector<std::int32_t> _indicesOfOccurrences(const SlotSequence& target,
                                                  std::uint64_t& steps) const;

  // Overlays the slots of this sequence on the target's, position by position and in place, up to
  // the shorter length. Returns the target.
  std::shared_ptr<SlotSequence> overlayedOn(std::shared_ptr<SlotSequence> target) const;

  std::string description() const override;  // the slots' descriptions, joined by "."

  bool _matchesAt(const SlotRun& target, std::size_t index) const override;
  bool _writesLines() const override;

  // Reads the elements as slots. `position` is the index of the first one in the file's array, for
  // the place in a GrammarError.
  static SlotArray _slotsFromPlist(std::span<const Value> elements, std::size_t position);

 protected:
  explicit SlotSequence(SlotArray slots) : _slots(std::move(slots)) {}
  explicit SlotSequence(std::unique_ptr<const PendingSlots> slots) : _pending(std::move(slots)) {}

  // The source of slots not created yet; nullptr once they exist.
  const PendingSlots* _pendingSlots() const { return _pending.get(); }

  static SlotArray _slotsFromPlist(const Value& plist);

 private:
  std::shared_ptr<Slot> _reversed() override;
  void _makeSlots() const;

  // Exactly one of the two holds the slots at any time: reading pending slots creates them.
  mutable SlotArray _slots;
  mutable std::unique_ptr<const PendingSlots> _pending;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_SLOT_SEQUENCE_H_
