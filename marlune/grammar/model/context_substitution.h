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

// One rewriting step of a phrase, on behalf of SimpleSlotSequence: replaces every occurrence of a
// left-hand side by the slots that a production makes of it. An object serves one call.
class ContextSubstitution {
 public:
  // `leftHandSide` and `production` may be null. All arguments must outlive the object. REQUIRES:
  // the phrase is padded.
  ContextSubstitution(const SimpleSlotSequence& phrase, const SlotsInContext* leftHandSide,
                      const GenericProduction* production);

  // The rewritten phrase, a new object. Call once.
  std::shared_ptr<SimpleSlotSequence> result();

  // Whether the phrase would have grown too long; the remaining occurrences were left unchanged.
  bool isFull() const { return _isFull; }

  // The work done, in the steps of Repetition: of the matching, the slots of the phrase and those
  // produced, the phrase's text and the expansions searched.
  std::uint64_t steps() const { return _steps; }

 private:
  // Rewrites the occurrence at `index` of the current phrase. Throws std::out_of_range, without any
  // change, when that would reach outside the phrase or the occurrence.
  void _replace(std::int32_t index);

  // The slots that the production makes of the occurrence; nothing, after a log line, when they
  // exceed `mostText` bytes. The second function checks the number of slots.
  std::optional<SlotArray> _replacement(const NewProduction& production,
                                        const SimpleSlotSequence* occurrence, std::size_t mostText);
  bool _fits(std::size_t replacementCount);
  void _setFull(std::size_t most, const char* unit);

  // The current phrase: _front, then _back from its end to its start. Occurrences are rewritten
  // from left to right, so replacing all of them moves each slot about once.
  std::size_t _count() const { return _front.size() + _back.size(); }
  const std::shared_ptr<Slot>& _slotAt(std::size_t position) const;
  std::shared_ptr<SimpleSlotSequence> _occurrenceAt(std::size_t position) const;
  void _moveTo(std::size_t position);  // makes _front this long

  const SlotsInContext* _leftHandSide;
  const GenericProduction* _production;
  SlotArray _front;
  SlotArray _back;
  std::vector<std::int32_t> _indices;  // of the occurrences, before any is rewritten
  std::int32_t _shift = 0;             // of later occurrences, by the growth of earlier ones
  std::size_t _longest;
  std::size_t _text = 0;  // of the phrase, in bytes
  std::size_t _mostText;
  std::uint64_t _steps = 0;
  bool _isFull = false;  // the phrase would have grown too long
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_CONTEXT_SUBSTITUTION_H_
