#include "marlune/grammar/model/slot.h"

#include "marlune/grammar/base/grammar_error.h"
#include "marlune/grammar/base/special_characters.h"
#include "marlune/grammar/model/disjunction_slot.h"
#include "marlune/grammar/model/kleene_slot.h"
#include "marlune/grammar/model/negation_slot.h"
#include "marlune/grammar/model/simple_slot.h"
#include "marlune/grammar/model/slot_sequence.h"
#include "marlune/util/tq_utils.h"

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

const Cell* SlotRun::cellAt(std::size_t index) const {
  if (index >= _count) return nullptr;
  return _origin[static_cast<std::ptrdiff_t>(index) * _step]->_cellOrNull().get();
}

std::shared_ptr<Slot> Slot::instanceFromPlist(const Value& plist) {
  if (plist.asArray()) return slotOfElements(plist.asArray()->elements());
  return SimpleSlot::instanceFromPlist(plist);
}

std::shared_ptr<Slot> Slot::initFromPlist(const Value&) {
  TQUtils::log(
      "ERROR: 'initFromPlist' method called on Slot which is an Abstract Class. Try using "
      "'instanceFromPlist' instead.");
  return nullptr;
}

bool Slot::matches(const SlotSequence& target) const {
  return _matchesAt(SlotRun::forwards(target.slots()), 0);
}

const std::shared_ptr<Cell>& Slot::_cellOrNull() const {
  static const std::shared_ptr<Cell> kNoCell;
  return kNoCell;
}

bool Slot::_matchesAt(const SlotRun&, std::size_t) const {
  TQUtils::systemLog("ERROR: 'matches' method called on Slot which is an Abstract Class.");
  return false;
}

}  // namespace marlune
