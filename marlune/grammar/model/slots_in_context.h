#ifndef MARLUNE_GRAMMAR_MODEL_SLOTS_IN_CONTEXT_H_
#define MARLUNE_GRAMMAR_MODEL_SLOTS_IN_CONTEXT_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "marlune/grammar/model/simple_slot_sequence.h"
#include "marlune/platform/visibility.h"

namespace marlune {

// The left-hand side of a rule: the significant slots, which a production replaces, and the
// contexts that must match right before and right after them, which are never replaced.
class MARLUNE_API SlotsInContext : public Describable {
 public:
  // From a dictionary with "_significantSlots" and optionally "_preContext" and "_postContext". A
  // missing context is empty. Missing significant slots stay null, after a line straight to the
  // system log. For anything but a dictionary, all four fields are null, without a line.
  static std::shared_ptr<SlotsInContext> initFromPlist(const Value& plist);
  static std::shared_ptr<SlotsInContext> instanceFromPlist(const Value& plist);

  // An absent context is empty.
  static std::shared_ptr<SlotsInContext> initWithArraysForSignificantSlots(
      SlotArray significantSlots, std::optional<SlotArray> preContext,
      std::optional<SlotArray> postContext);

  // Uses the sequence's slots, without contexts.
  static std::shared_ptr<SlotsInContext> slotsInContextWithSignificantSlotSequence(
      const SlotSequence& sequence);

  // The position of the first significant slot of every place where all three match, ascending; a
  // leading blank counts as position 0. The post-context is matched at that position plus the
  // number of slots in the significant *pattern*, even if a Kleene slot in it took more or fewer.
  // Empty when there are no significant slots.
  std::vector<std::int32_t> indicesOfOccurrencesInTarget(const SimpleSlotSequence& phrase) const;

  // The same; adds the work done, as SequenceMatcher counts it, to `steps`.
  std::vector<std::int32_t> _indicesOfOccurrences(const SimpleSlotSequence& phrase,
                                                  std::uint64_t& steps) const;

  // Whether finding occurrences can write lines.
  bool _writesLines() const;

  const std::shared_ptr<SimpleSlotSequence>& significantSlots() const { return _significantSlots; }
  const std::shared_ptr<SlotSequence>& preContext() const { return _preContext; }
  const std::shared_ptr<SlotSequence>& preContextReversed() const { return _preContextReversed; }
  const std::shared_ptr<SlotSequence>& postContext() const { return _postContext; }

  std::string description() const override;

 protected:
  SlotsInContext() = default;

 private:
  std::shared_ptr<SlotSequence> _preContext;
  std::shared_ptr<SlotSequence> _preContextReversed;  // made once; the same if absent
  std::shared_ptr<SimpleSlotSequence> _significantSlots;
  std::shared_ptr<SlotSequence> _postContext;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_SLOTS_IN_CONTEXT_H_
