#include "marlune/grammar/model/context_substitution.h"

#include <algorithm>
#include <stdexcept>
#include <string>

#include "marlune/grammar/base/repetition.h"
#include "marlune/grammar/model/rewriting_fault.h"
#include "marlune/grammar/model/simple_slot.h"
#include "marlune/util/tq_utils.h"

namespace marlune {

namespace {

constexpr std::string_view kTrace = ZKPlistNotificationDefault;

// Indices for a trace: joined only when the trace is written.
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

std::size_t attributeCountOf(const Slot& slot) {
  const std::shared_ptr<Cell>& cell = slot._cellOrNull();
  return cell && cell->attributes() ? cell->attributes()->count() : 0;
}

// The bytes of text that a slot counts for.
std::size_t textOf(const Slot& slot) {
  const std::shared_ptr<Cell>& cell = slot._cellOrNull();
  if (!cell || !cell->attributes()) return 0;
  std::size_t bytes = 0;
  for (const auto& [name, value] : cell->attributes()->entries()) {
    const std::string* const text = value.asString();
    bytes += name->size() + (text ? text->size() : value.text().size());
  }
  return bytes;
}

// The slot that a production's index refers to. An absent occurrence has none; the nullptr must not
// become part of a phrase.
std::shared_ptr<Slot> baseSlot(std::int32_t index, const SimpleSlotSequence* occurrence) {
  if (index < 0) return SimpleSlot::empty();
  if (!occurrence || static_cast<std::size_t>(index) >= occurrence->count()) {
    throw std::out_of_range("production's index " + std::to_string(index) + " outside the " +
                            std::to_string(occurrence ? occurrence->count() : 0) +
                            " slots of the occurrence");
  }
  return occurrence->slots()[static_cast<std::size_t>(index)];
}

// The value that an overlay sets: the value itself, or the attribute of the occurrence that it
// refers to, "" if that is absent.
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
    : _leftHandSide(leftHandSide), _production(production) {
  std::size_t mostAttributes = 0;
  for (const std::shared_ptr<Slot>& slot : phrase.slots()) {
    _text += textOf(*slot);
    const std::size_t attributes = attributeCountOf(*slot);
    mostAttributes = std::max(mostAttributes, attributes);
    _steps += Repetition::stepsOfSlot(attributes);
  }
  _longest = std::max(SimpleSlotSequence::kLongestPhrase, phrase.count());
  _mostText = std::max(SimpleSlotSequence::kMostText, _text);
  std::uint64_t matching = 0;
  if (leftHandSide) _indices = leftHandSide->_indicesOfOccurrences(phrase, matching);
  _steps += Repetition::stepsOfText(_text) + Repetition::stepsOfMatching(matching, mostAttributes);
  _back.assign(phrase.slots().rbegin(), phrase.slots().rend());
}

std::shared_ptr<SimpleSlotSequence> ContextSubstitution::result() {
  TQUtils::forDefaultLog(kTrace, "    indicesOfOccurences: %@", JoinedIndices(_indices));
  for (std::size_t i = 0; i < _indices.size() && !_isFull; ++i) {
    try {
      _replace(_indices[i] + _shift);
    } catch (const std::out_of_range& error) {
      TQUtils::log("ERROR: The occurrence at %i stays as it is: %s.", _indices[i] + _shift,
                   error.what());
    }
  }
  _moveTo(_count());
  auto target = SimpleSlotSequence::initWithArray(std::move(_front));
  TQUtils::forDefaultLog(kTrace, "targetAtStart:");
  TQUtils::forDefaultLog(kTrace, "modifiedTarget:");
  TQUtils::forDefaultLog(kTrace, "%@", *target);
  return target;
}

void ContextSubstitution::_replace(std::int32_t index) {
  if (index < 0) throw std::out_of_range("it has moved before the phrase's start");
  const auto position = static_cast<std::size_t>(index);
  const std::size_t matched = _leftHandSide->significantSlots()->count();

  // Null near the phrase's end, when a Kleene slot let the pattern match fewer slots than it has.
  // Then there are no slots, no values and nothing after the occurrence.
  const auto occurrence = _occurrenceAt(position);
  const NewProduction* const production =
      _production ? _production->_productionFor(occurrence.get(), _steps) : nullptr;
  if (!production) return;
  std::size_t textKept = _text;
  for (std::size_t at = position; at < std::min(_count(), position + matched); ++at) {
    textKept -= textOf(*_slotAt(at));
  }
  std::optional<SlotArray> replacement =
      _replacement(*production, occurrence.get(), _mostText - textKept);
  if (!replacement || !_fits(replacement->size())) return;
  if (position > _count()) {
    throw std::out_of_range("index " + std::to_string(position) + " beyond the " +
                            std::to_string(_count()) + " slots of a sequence");
  }
  _moveTo(position);
  _back.resize(_back.size() - std::min(matched, _back.size()));
  _text = textKept;
  for (const std::shared_ptr<Slot>& slot : *replacement) {
    _text += textOf(*slot);
    _steps += Repetition::stepsOfProduced(attributeCountOf(*slot));
  }
  _front.insert(_front.end(), replacement->begin(), replacement->end());
  _shift += static_cast<std::int32_t>(replacement->size()) - static_cast<std::int32_t>(matched);
}

const std::shared_ptr<Slot>& ContextSubstitution::_slotAt(std::size_t position) const {
  return position < _front.size() ? _front[position] : _back[_count() - 1 - position];
}

std::shared_ptr<SimpleSlotSequence> ContextSubstitution::_occurrenceAt(std::size_t position) const {
  const std::size_t matched = _leftHandSide->significantSlots()->count();
  if (position > _count() || matched > _count() - position) return nullptr;
  SlotArray slots;
  slots.reserve(matched);
  for (std::size_t i = 0; i < matched; ++i) slots.push_back(_slotAt(position + i));
  return SimpleSlotSequence::initWithArray(std::move(slots));
}

void ContextSubstitution::_moveTo(std::size_t position) {
  for (; _front.size() < position; _back.pop_back()) _front.push_back(std::move(_back.back()));
  for (; _front.size() > position; _front.pop_back()) _back.push_back(std::move(_front.back()));
}

std::optional<SlotArray> ContextSubstitution::_replacement(const NewProduction& production,
                                                           const SimpleSlotSequence* occurrence,
                                                           std::size_t mostText) {
  SlotArray slots;
  if (production.indices()) {
    for (const std::int32_t index : *production.indices()) {
      slots.push_back(baseSlot(index, occurrence));
    }
  }
  SlotArray overlays;
  if (production.overlays()) {
    for (const std::shared_ptr<Slot>& overlay : production.overlays()->slots()) {
      overlays.push_back(resolvedOverlay(*overlay, occurrence));
    }
  }
  std::size_t text = 0;
  for (std::size_t i = 0; i < slots.size(); ++i) {
    const SimpleSlot* const overlay =
        i < overlays.size() ? SimpleSlot::from(overlays[i].get()) : nullptr;
    const SimpleSlot* const under = SimpleSlot::from(slots[i].get());
    if (overlay && under) slots[i] = overlay->overlayedOn(*under);
    text += textOf(*slots[i]);
    if (text <= mostText) continue;
    TQUtils::log("ERROR: The phrase would grow past %lu bytes of text and is left as it is.",
                 _mostText);
    _setFull(_mostText, " bytes of text");
    return std::nullopt;
  }
  return slots;
}

bool ContextSubstitution::_fits(std::size_t replacementCount) {
  const std::size_t replaced = _leftHandSide->significantSlots()->count();
  if (replacementCount <= replaced) return true;
  if (_count() + (replacementCount - replaced) <= _longest) return true;
  TQUtils::log("ERROR: The phrase would grow past %lu words and is left as it is.", _longest);
  _setFull(_longest, " words");
  return false;
}

void ContextSubstitution::_setFull(std::size_t most, const char* unit) {
  _isFull = true;
  RewritingFault::report(Failure::Kind::tooLarge,
                         "the phrase would grow past " + std::to_string(most) + unit);
}

}  // namespace marlune
