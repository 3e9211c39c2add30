// How an element of a grammar becomes a slot: here, as it makes slots of every kind.
#include "marlune/grammar/model/slot.h"

#include <span>

#include "marlune/grammar/base/grammar_error.h"
#include "marlune/grammar/base/special_characters.h"
#include "marlune/grammar/model/disjunction_slot.h"
#include "marlune/grammar/model/kleene_slot.h"
#include "marlune/grammar/model/negation_slot.h"
#include "marlune/grammar/model/simple_slot.h"
#include "marlune/grammar/model/slot_sequence.h"

namespace marlune {

namespace {

// The compound slot for an array's marker and the members after it; nullptr if the first element is
// not a marker.
std::shared_ptr<Slot> slotOfElements(const std::vector<Value>& elements) {
  if (elements.empty()) throw GrammarError("", "an empty array where a slot is expected");
  const std::string* marker = elements.front().asString();
  if (!marker) return nullptr;
  const auto members = [&elements] {
    return SlotSequence::_slotsFromPlist(std::span(elements).subspan(1), /*position=*/1);
  };
  if (*marker == SpecialCharacters::disjunctionMarker()) {
    return DisjunctionSlot::initWithArray(members());
  }
  if (*marker == SpecialCharacters::kleeneMarker()) return KleeneSlot::initWithArray(members());
  if (*marker == SpecialCharacters::negationMarker()) return NegationSlot::initWithArray(members());
  return nullptr;
}

}  // namespace

std::shared_ptr<Slot> Slot::instanceFromPlist(const Value& plist) {
  if (plist.asArray()) return slotOfElements(plist.asArray()->elements());
  return SimpleSlot::instanceFromPlist(plist);
}

}  // namespace marlune
