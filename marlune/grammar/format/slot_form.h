#ifndef MARLUNE_GRAMMAR_FORMAT_SLOT_FORM_H_
#define MARLUNE_GRAMMAR_FORMAT_SLOT_FORM_H_

#include <span>
#include <string_view>

#include "marlune/grammar/base/special_characters.h"
#include "marlune/platform/value.h"

namespace marlune {

// How a value of a grammar reads as a cell.
enum class CellForm : unsigned char {
  wildcard,
  blank,
  word,        // a string: its content
  attributes,  // a dictionary: its attributes
  other,       // a wildcard without attributes
};

inline CellForm cellFormOf(std::string_view text) {
  if (text == SpecialCharacters::kWildcard) return CellForm::wildcard;
  if (text == SpecialCharacters::kBlank) return CellForm::blank;
  return CellForm::word;
}
CellForm cellFormOf(const Value& value);

// How a value of a grammar reads as a slot of a pattern.
struct SlotForm {
  enum class Kind : unsigned char {
    cell,  // read as a cell; anything but an array
    disjunction,
    kleene,
    negation,
    empty,     // an array without a marker: not a slot
    unmarked,  // an array whose first element is not a marker: not a slot
  };

  // REQUIRES: the value outlives the form.
  static SlotForm of(const Value& value);

  Kind kind;
  std::span<const Value> members;  // of a compound slot
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_FORMAT_SLOT_FORM_H_
