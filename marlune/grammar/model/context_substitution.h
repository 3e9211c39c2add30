#ifndef MARLUNE_GRAMMAR_MODEL_CONTEXT_SUBSTITUTION_H_
#define MARLUNE_GRAMMAR_MODEL_CONTEXT_SUBSTITUTION_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "marlune/grammar/model/generic_production.h"
#include "marlune/grammar/model/new_production.h"
#include "marlune/grammar/model/simple_slot_sequence.h"
#include "marlune/grammar/model/slots_in_context.h"

namespace marlune {

// One rewriting step of a phrase, as SimpleSlotSequence offers it: every occurrence of a left-hand
// side replaced by what a production makes of it. Made for one call.
class ContextSubstitution {
 public:
  // Either of the last two may be null. They must outlive the object.
  ContextSubstitution(const SimpleSlotSequence& phrase, const SlotsInContext* leftHandSide,
                      const GenericProduction* production);

  // The rewritten phrase, a new one. Once only.
  std::shared_ptr<SimpleSlotSequence> result();

  // Whether the phrase would have grown too long, and the occurrences left stay as they are.
  bool isFull() const { return _isFull; }

  // The work done, in the steps of SequenceMatcher::steps: matching, the slots of the phrase and
  // those produced, one step for 16 bytes of the phrase's text and one for 16 expansions looked
  // through.
  std::uint64_t steps() const { return _steps; }

  // Of one slot: carrying it to the next pass, and producing it. Attributes are looked up one after
  // the other, so their number counts with its square, and makes matching dearer.
  static std::uint64_t stepsOfSlot(std::uint64_t attributes) {
    return 20 + 2 * attributes + attributes * attributes / 4;
  }
  static std::uint64_t stepsOfProduced(std::uint64_t attributes) {
    return 20 + 6 * attributes + attributes * attributes;
  }
  static std::uint64_t stepsOfMatching(std::uint64_t steps, std::uint64_t mostAttributes) {
    return steps * (1 + mostAttributes / 8);
  }

 private:
  // Rewrites the occurrence at `index` of the phrase as it stands. Throws std::out_of_range, with
  // nothing changed, when that would reach outside the phrase or the occurrence.
  void _replace(std::int32_t index);

  // The one to use at the occurrence, which may be null; nullptr when there is none.
  std::shared_ptr<const NewProduction> _productionFor(const SimpleSlotSequence* occurrence);

  // What the production makes of the occurrence; nothing, with a line, when that takes more than
  // `mostText` bytes. And whether the phrase may have so many slots.
  std::optional<SlotArray> _replacement(const NewProduction& production,
                                        const SimpleSlotSequence* occurrence, std::size_t mostText);
  bool _fits(std::size_t replacementCount);

  // The phrase as it stands: _front, then _back from its end to its start. Occurrences come from
  // left to right, so that replacing all of them moves each slot about once.
  std::size_t _count() const { return _front.size() + _back.size(); }
  const std::shared_ptr<Slot>& _slotAt(std::size_t position) const;
  std::shared_ptr<SimpleSlotSequence> _occurrenceAt(std::size_t position) const;
  void _moveTo(std::size_t position);  // makes _front that long

  const SlotsInContext* _leftHandSide;
  const GenericProduction* _production;
  SlotArray _front;
  SlotArray _back;
  std::vector<std::int32_t> _indices;  // of the occurrences, before any is rewritten
  std::int32_t _shift = 0;             // of those to come, by what earlier ones grew or shrank
  std::size_t _longest;
  std::size_t _text = 0;  // of the phrase, in bytes
  std::size_t _mostText;
  std::uint64_t _steps = 0;
  bool _isFull = false;  // the phrase would have grown too long
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_CONTEXT_SUBSTITUTION_H_
