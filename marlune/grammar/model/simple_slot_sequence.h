#ifndef MARLUNE_GRAMMAR_MODEL_SIMPLE_SLOT_SEQUENCE_H_
#define MARLUNE_GRAMMAR_MODEL_SIMPLE_SLOT_SEQUENCE_H_

#include <memory>
#include <string>
#include <vector>

#include "marlune/grammar/model/attribute_key.h"
#include "marlune/grammar/model/attribute_value.h"
#include "marlune/grammar/model/slot_sequence.h"

namespace marlune {

class GenericProduction;
class SlotsInContext;

// A phrase: a sequence of simple slots, one a word, normally with one blank at each end, which
// patterns see as the phrase's boundaries. Significant slots of a left-hand side have this class
// too and may hold compound slots; where an operation looks at cells, such a slot has none.
class SimpleSlotSequence : public SlotSequence {
 public:
  // One slot a string, each as Slot::instanceFromPlist makes it ("?" a wildcard, "_E" a blank).
  static SlotArray slotArrayWithStrings(const std::vector<std::string>& strings);
  static std::shared_ptr<SimpleSlotSequence> slotSequenceWithStrings(
      const std::vector<std::string>& strings);

  // The same with one new blank before and one behind, whatever the strings are. Traces the slots.
  static std::shared_ptr<SimpleSlotSequence> blankBufferedSlotSequenceWithStrings(
      const std::vector<std::string>& strings);

  static std::shared_ptr<SimpleSlotSequence> emptySlotSequence();
  static std::shared_ptr<SimpleSlotSequence> slotSequenceWithArray(SlotArray slots);
  static std::shared_ptr<SimpleSlotSequence> initWithArray(SlotArray slots);
  static std::shared_ptr<SimpleSlotSequence> initFromPlist(const Value& plist);

  // The slots are made when somebody looks at them. Until then the phrase is for one thread alone.
  static std::shared_ptr<SimpleSlotSequence> _withPendingSlots(
      std::unique_ptr<const PendingSlots> slots);

  // Gives this phrase the blanks that it lacks and answers it: one in front unless it begins with
  // a blank, one behind unless it has two slots and ends with a blank.
  SimpleSlotSequence& pad();

  // The contents of the cells that have content, in order; no other attribute is part of it.
  // Content that is no string stands in its printed form.
  std::vector<std::string> stringArray() const;

  // The attribute that the key names, of the slot that it names; nullptr when the cell lacks it.
  // Holds until that cell changes. Throws std::out_of_range for a position outside the phrase.
  const AttributeValue* valueForAttributeKey(const AttributeKey& key) const;

  // The target's slots, with each that has one of this sequence at its position replaced by the
  // overlay of that on it. Neither input changes.
  std::shared_ptr<SimpleSlotSequence> overlayedOn(const SimpleSlotSequence& target) const;

  std::shared_ptr<Slot> first() const;  // throws std::out_of_range when empty

  // The padded phrase with each occurrence of the left-hand side rewritten by the production. The
  // occurrences are found once, before any is rewritten, and rewritten from left to right at
  // positions shifted by what earlier ones grew or shrank; overlapping ones are not dropped. A
  // null or unknown production, and a null left-hand side, leave the phrase as it is.
  //
  // An occurrence whose rewriting reaches outside the phrase or the occurrence stays as it is,
  // with an unconditional line. So do all that remain once the phrase would grow past
  // kLongestPhrase slots or kMostText bytes of text, or past what it has if that is more.
  std::shared_ptr<SimpleSlotSequence> sequenceByReplacingOccurencesOfSlotsInContext(
      const SlotsInContext* leftHandSide, const GenericProduction* withProduction) const;

  // The same for a pattern without context and a replacement whose cells become new literals.
  std::shared_ptr<SimpleSlotSequence> sequenceByReplacingOccurencesOfSequence(
      const SlotSequence& pattern, std::shared_ptr<SimpleSlotSequence> withSequence) const;

  // Far more than can be spoken, far less than what a grammar that doubles its phrase again and
  // again would need to exhaust memory.
  static constexpr std::size_t kLongestPhrase = 10000;

  // Bytes of text: the names and values of all attributes of all slots, each as often as it occurs.
  static constexpr std::size_t kMostText = std::size_t{16} << 20;

 protected:
  using SlotSequence::SlotSequence;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_SIMPLE_SLOT_SEQUENCE_H_
