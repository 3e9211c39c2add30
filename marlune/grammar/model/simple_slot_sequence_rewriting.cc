// How a phrase is rewritten: apart from the phrase itself, as contexts and productions hold
// phrases.
#include "marlune/grammar/model/simple_slot_sequence.h"

#include <utility>

#include "marlune/grammar/model/context_substitution.h"
#include "marlune/grammar/model/new_production.h"
#include "marlune/grammar/model/slots_in_context.h"

namespace marlune {

std::shared_ptr<SimpleSlotSequence>
SimpleSlotSequence::sequenceByReplacingOccurencesOfSlotsInContext(
    const SlotsInContext* leftHandSide, const GenericProduction* withProduction) const {
  return ContextSubstitution(*_paddedCopy(), leftHandSide, withProduction).result();
}

std::shared_ptr<SimpleSlotSequence> SimpleSlotSequence::sequenceByReplacingOccurencesOfSequence(
    const SlotSequence& pattern, std::shared_ptr<SimpleSlotSequence> withSequence) const {
  const auto leftHandSide = SlotsInContext::slotsInContextWithSignificantSlotSequence(pattern);
  const auto production = NewProduction::productionWithSimpleSlotSequence(std::move(withSequence));
  return sequenceByReplacingOccurencesOfSlotsInContext(leftHandSide.get(), production.get());
}

}  // namespace marlune
