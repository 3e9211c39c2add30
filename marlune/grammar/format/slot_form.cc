#include "marlune/grammar/format/slot_form.h"

namespace marlune {

CellForm cellFormOf(const Value& value) {
  if (const std::string* text = value.asString()) return cellFormOf(std::string_view(*text));
  return value.asDictionary() ? CellForm::attributes : CellForm::other;
}

SlotForm SlotForm::of(const Value& value) {
  const auto& array = value.asArray();
  if (!array) return {Kind::cell, {}};
  const std::span<const Value> elements(array->elements());
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
