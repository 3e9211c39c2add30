#ifndef MARLUNE_GRAMMAR_MODEL_SIMPLE_SLOT_SEQUENCE_H_
#define MARLUNE_GRAMMAR_MODEL_SIMPLE_SLOT_SEQUENCE_H_

#include <memory>
#include <string>
#include <vector>

#include "marlune/grammar/model/attribute_key.h"
#include "marlune/grammar/model/attribute_value.h"
#include "marlune/grammar/model/slot_sequence.h"
#include "marlune/platform/visibility.h"

namespace marlune {

class GenericProduction;
class SlotsInContext;

// A phrase: a sequence of simple slots, one for each word, usually with one blank at each end,
// which patterns see as the phrase's boundaries. Significant slots of a left-hand side also have
// this class and may contain compound slots; operations on cells treat such a slot as one without a
// cell.
class MARLUNE_API SimpleSlotSequence : public SlotSequence {
 public:
  // One slot for each string, as made by Slot::instanceFromPlist ("?" a wildcard, "_E" a blank).
  static SlotArray slotArrayWithStrings(const std::vector<std::string>& strings);
  static std::shared_ptr<SimpleSlotSequence> slotSequenceWithStrings(
      const std::vector<std::string>& strings);

  // The same with one new blank before and one after, whatever the strings are. Traces the slots.
  static std::shared_ptr<SimpleSlotSequence> blankBufferedSlotSequenceWithStrings(
      const std::vector<std::string>& strings);

  static std::shared_ptr<SimpleSlotSequence> emptySlotSequence();
  static std::shared_ptr<SimpleSlotSequence> slotSequenceWithArray(SlotArray slots);
  static std::shared_ptr<SimpleSlotSequence> initWithArray(SlotArray slots);
  static std::shared_ptr<SimpleSlotSequence> initFromPlist(const Value& plist);

  // A phrase whose slots are created on demand. Until then only one thread may use it.
  static std::shared_ptr<SimpleSlotSequence> _withPendingSlots(
      std::unique_ptr<const PendingSlots> slots);

  // Adds the blanks that the phrase lacks and returns it: one in front unless it begins with a
  // blank, one at the end unless it has two slots and ends with a blank.
  SimpleSlotSequence& pad();

  // A copy with these blanks.
  std::shared_ptr<SimpleSlotSequence> _paddedCopy() const;

  // The contents of the cells that have content, in order, without other attributes. Content that
  // is not a string is given in its printed form.
  std::vector<std::string> stringArray() const;

  // The attribute named by the key, of the slot at the key's index; nullptr when the cell lacks it.
  // Valid until that cell changes. Throws std::out_of_range for an index outside the phrase.
  const AttributeValue* valueForAttributeKey(const AttributeKey& key) const;

  // The target's slots; where this sequence has a slot at the same position, the overlay of that
  // slot on the target's. Changes neither input.
  std::shared_ptr<SimpleSlotSequence> overlayedOn(const SimpleSlotSequence& target) const;

  std::shared_ptr<Slot> first() const;  // throws std::out_of_range when empty

  // The padded phrase with each occurrence of the left-hand side rewritten by the production. All
  // occurrences are found before any is rewritten. They are rewritten from left to right, at
  // positions shifted by the growth of earlier ones; overlapping ones are not dropped. A null
  // production and a null left-hand side leave the phrase unchanged.
  //
  // An occurrence whose rewriting would reach outside the phrase or the occurrence is left
  // unchanged, with an unconditional line. So are all remaining ones once the phrase would grow
  // past kLongestPhrase slots or kMostText bytes of text, or past its initial size if that is
  // larger.
  std::shared_ptr<SimpleSlotSequence> sequenceByReplacingOccurencesOfSlotsInContext(
      const SlotsInContext* leftHandSide, const GenericProduction* withProduction) const;

  // The same for a pattern without context and a replacement whose cells become new literals.
  std::shared_ptr<SimpleSlotSequence> sequenceByReplacingOccurencesOfSequence(
      const SlotSequence& pattern, std::shared_ptr<SimpleSlotSequence> withSequence) const;

  // Far more than can be spoken, but small enough that a grammar that keeps doubling its phrase
  // cannot exhaust memory.
  static constexpr std::size_t kLongestPhrase = 10000;

  // Bytes of text: the names and values of all attributes of all slots, each counted as often as it
  // occurs.
  static constexpr std::size_t kMostText = std::size_t{16} << 20;

 protected:
  using SlotSequence::SlotSequence;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_SIMPLE_SLOT_SEQUENCE_H_
