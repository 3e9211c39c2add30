#include "marlune/grammar/context_substitution.h"

#include <algorithm>
#include <stdexcept>
#include <string>

#include "marlune/grammar/conditional_production.h"
#include "marlune/grammar/simple_slot.h"
#include "marlune/util/tq_utils.h"

namespace marlune {

namespace {

constexpr std::string_view kTrace = ZKPlistNotificationDefault;

// Indices as a trace shows them: joined only when the trace is written.
class JoinedIndices : public Describable {
 public:
  explicit JoinedIndices(const std::vector<std::int32_t>& indices) : _indices(indices) {}
  std::string description() const override {
    std::string joined;
    for (const std::int32_t& index : _indices) {
      if (&index != &_indices.front()) joined += ", ";
      joined += std::to_string(index);
    }
    return joined;
  }

 private:
  const std::vector<std::int32_t>& _indices;
};

// The slot that a production's index asks for. An occurrence that is absent has none, which cannot
// become part of a phrase either.
std::shared_ptr<Slot> baseSlot(std::int32_t index, const SimpleSlotSequence* occurrence) {
  if (index < 0) return SimpleSlot::empty();
  if (!occurrence || static_cast<std::size_t>(index) >= occurrence->count()) {
    throw std::out_of_range("production's index " + std::to_string(index) + " outside the " +
                            std::to_string(occurrence ? occurrence->count() : 0) +
                            " slots of the occurrence");
  }
  return occurrence->slots()[static_cast<std::size_t>(index)];
}

// The value that an overlay sets: itself, or what it refers to in the occurrence, "" if nothing.
AttributeValue resolved(const AttributeValue& value, const SimpleSlotSequence* occurrence) {
  const AttributeKey* key = value.asAttributeKey();
  if (!key) {
    TQUtils::forDefaultLog(kTrace, "No Substitution required!");
    return value;
  }
  TQUtils::forDefaultLog(kTrace, "Substitution!");
  const AttributeValue* found = occurrence ? occurrence->valueForAttributeKey(*key) : nullptr;
  return found ? *found : AttributeValue(std::string());
}

std::shared_ptr<Slot> resolvedOverlay(const Slot& overlay, const SimpleSlotSequence* occurrence) {
  const std::shared_ptr<Cell> fresh = Cell::cell();
  const std::shared_ptr<Cell>& cell = overlay._cellOrNull();
  if (cell && cell->attributes()) {
    for (const auto& [name, value] : cell->attributes()->entries()) {
      fresh->setAttribute(resolved(value, occurrence), name);
    }
  }
  return SimpleSlot::simpleSlotWithCell(fresh);
}

}  // namespace

ContextSubstitution::ContextSubstitution(const SimpleSlotSequence& phrase,
                                         const SlotsInContext* leftHandSide,
                                         const GenericProduction* production)
    : _leftHandSide(leftHandSide),
      _production(production),
      _target(SimpleSlotSequence::initWithArray(phrase.slots())) {
  _target->pad();
  _longest = std::max(SimpleSlotSequence::kLongestPhrase, _target->count());
  if (leftHandSide) _indices = leftHandSide->indicesOfOccurrencesInTarget(*_target);
}

std::shared_ptr<SimpleSlotSequence> ContextSubstitution::result() {
  TQUtils::forDefaultLog(kTrace, "    indicesOfOccurences: %@", JoinedIndices(_indices));
  for (std::size_t i = 0; i < _indices.size() && !_isFull; ++i) {
    try {
      _replace(i);
    } catch (const std::out_of_range& error) {
      TQUtils::log("ERROR: The occurrence at %i stays as it is: %s.", _indices[i], error.what());
    }
  }
  TQUtils::forDefaultLog(kTrace, "targetAtStart:");
  TQUtils::forDefaultLog(kTrace, "modifiedTarget:");
  TQUtils::forDefaultLog(kTrace, "%@", *_target);
  return _target;
}

void ContextSubstitution::_replace(std::size_t which) {
  const std::int32_t index = _indices[which];
  if (index < 0) throw std::out_of_range("it has moved before the phrase's start");
  const auto position = static_cast<std::size_t>(index);
  const SlotSequence& significant = *_leftHandSide->significantSlots();

  // Null when a Kleene slot let the pattern match fewer slots than it has itself, near the end. It
  // then has no slots and no values, and what follows it is nothing.
  const auto occurrence = _target->occurrenceOfSequence(significant, position);
  const auto production = _productionFor(occurrence.get());
  if (!production) return;
  SlotArray replacement = _replacement(*production, occurrence.get());
  if (!_fits(replacement.size())) return;

  const std::int32_t shift = static_cast<std::int32_t>(replacement.size()) -
                             static_cast<std::int32_t>(significant.count());
  SlotArray slots = _target->portionPrecedingOccurrenceOfSequence(significant, position)->slots();
  slots.insert(slots.end(), replacement.begin(), replacement.end());
  if (const auto after = _target->portionFollowingOccurrenceOfSequence(significant, position)) {
    slots.insert(slots.end(), after->slots().begin(), after->slots().end());
  }
  _target = SimpleSlotSequence::initWithArray(std::move(slots));

  // The current entry moves too, although nothing reads it again: later ones keep pointing at the
  // slots that they were found at.
  for (std::size_t i = which; i < _indices.size(); ++i) _indices[i] += shift;
}

std::shared_ptr<const NewProduction> ContextSubstitution::_productionFor(
    const SimpleSlotSequence* occurrence) const {
  using Kind = GenericProduction::Kind;
  if (!_production) return nullptr;
  if (_production->kind() == Kind::conditional) {
    const auto& conditional = static_cast<const ConditionalProduction&>(*_production);
    return conditional.expansionForKey(conditional.keyForOccurrence(occurrence));
  }
  if (_production->kind() != Kind::newProduction) return nullptr;
  return {std::shared_ptr<const void>(), static_cast<const NewProduction*>(_production)};
}

SlotArray ContextSubstitution::_replacement(const NewProduction& production,
                                            const SimpleSlotSequence* occurrence) const {
  SlotArray base;
  if (production.indices()) {
    for (const std::int32_t index : *production.indices()) {
      base.push_back(baseSlot(index, occurrence));
    }
  }
  SlotArray overlays;
  if (production.overlays()) {
    for (const std::shared_ptr<Slot>& overlay : production.overlays()->slots()) {
      overlays.push_back(resolvedOverlay(*overlay, occurrence));
    }
  }
  return SimpleSlotSequence::initWithArray(std::move(overlays))
      ->overlayedOn(*SimpleSlotSequence::initWithArray(std::move(base)))
      ->slots();
}

bool ContextSubstitution::_fits(std::size_t replacementCount) {
  const std::size_t replaced = _leftHandSide->significantSlots()->count();
  if (replacementCount <= replaced) return true;
  if (_target->count() + (replacementCount - replaced) <= _longest) return true;
  TQUtils::log("ERROR: The phrase would grow past %lu words and is left as it is.", _longest);
  _isFull = true;
  return false;
}

}  // namespace marlune
