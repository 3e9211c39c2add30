#include "marlune/grammar/format/slot_form.h"

namespace marlune {

CellForm cellFormOf(const Value& value) {
  switch (value.kind()) {
    case Value::Kind::string:
      return cellFormOf(std::string_view(*value.asString()));
    case Value::Kind::dictionary:
      return CellForm::attributes;
    default:
      return CellForm::other;
  }
}

SlotForm SlotForm::of(const Value& value) {
  if (value.kind() != Value::Kind::array) return {Kind::cell, {}};
  const std::span<const Value> elements(value.asArray()->elements());
  if (elements.empty()) return {Kind::empty, {}};
  const std::string* const marker = elements.front().asString();
  const std::span<const Value> members = elements.subspan(1);
  if (!marker) return {Kind::unmarked, {}};
  if (*marker == SpecialCharacters::disjunctionMarker()) return {Kind::disjunction, members};
  if (*marker == SpecialCharacters::kleeneMarker()) return {Kind::kleene, members};
  if (*marker == SpecialCharacters::negationMarker()) return {Kind::negation, members};
  return {Kind::unmarked, {}};
}

}  // namespace marlune
