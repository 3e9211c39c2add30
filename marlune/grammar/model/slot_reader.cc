// How an element of a grammar becomes a slot: here, as it makes slots of every kind.
#include "marlune/grammar/model/slot.h"

#include "marlune/grammar/base/grammar_error.h"
#include "marlune/grammar/format/slot_form.h"
#include "marlune/grammar/model/disjunction_slot.h"
#include "marlune/grammar/model/kleene_slot.h"
#include "marlune/grammar/model/negation_slot.h"
#include "marlune/grammar/model/simple_slot.h"
#include "marlune/grammar/model/slot_sequence.h"

namespace marlune {

std::shared_ptr<Slot> Slot::instanceFromPlist(const Value& plist) {
  const SlotForm form = SlotForm::of(plist);
  const auto members = [&form] {
    return SlotSequence::_slotsFromPlist(form.members, /*position=*/1);
  };
  switch (form.kind) {
    case SlotForm::Kind::cell:
      return SimpleSlot::instanceFromPlist(plist);
    case SlotForm::Kind::disjunction:
      return DisjunctionSlot::initWithArray(members());
    case SlotForm::Kind::kleene:
      return KleeneSlot::initWithArray(members());
    case SlotForm::Kind::negation:
      return NegationSlot::initWithArray(members());
    case SlotForm::Kind::empty:
      throw GrammarError("", "an empty array where a slot is expected");
    case SlotForm::Kind::unmarked:
      break;
  }
  return nullptr;
}

}  // namespace marlune
