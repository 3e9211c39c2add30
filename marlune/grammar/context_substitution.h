#ifndef MARLUNE_GRAMMAR_CONTEXT_SUBSTITUTION_H_
#define MARLUNE_GRAMMAR_CONTEXT_SUBSTITUTION_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "marlune/grammar/generic_production.h"
#include "marlune/grammar/new_production.h"
#include "marlune/grammar/simple_slot_sequence.h"
#include "marlune/grammar/slots_in_context.h"

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

 private:
  // Rewrites the occurrence that is `which` in _indices. Throws std::out_of_range, with nothing
  // changed, when that would reach outside the phrase or the occurrence.
  void _replace(std::size_t which);

  // The one to use at the occurrence, which may be null; nullptr when there is none.
  std::shared_ptr<const NewProduction> _productionFor(const SimpleSlotSequence* occurrence) const;

  // What the production makes of the occurrence, and whether the phrase may become so long.
  SlotArray _replacement(const NewProduction& production,
                         const SimpleSlotSequence* occurrence) const;
  bool _fits(std::size_t replacementCount);

  const SlotsInContext* _leftHandSide;
  const GenericProduction* _production;
  std::shared_ptr<SimpleSlotSequence> _target;
  std::vector<std::int32_t> _indices;  // of the occurrences in _target, those to come included
  std::size_t _longest;
  bool _isFull = false;  // the phrase would have grown too long
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_CONTEXT_SUBSTITUTION_H_
