#ifndef MARLUNE_GRAMMAR_FORMAT_PRODUCTION_FORM_H_
#define MARLUNE_GRAMMAR_FORMAT_PRODUCTION_FORM_H_

#include <cstdint>
#include <string>
#include <string_view>

#include "marlune/grammar/base/special_characters.h"
#include "marlune/platform/value.h"

namespace marlune {

// The kind of production that a right-hand side describes.
enum class ProductionForm : unsigned char {
  none,  // replaces nothing
  newProduction,
  conditional,
};
ProductionForm productionFormOf(const Value& rightHandSide);

// An element of a new production's array. In all forms below, pointers point into the list.
struct ProducedForm {
  enum class Kind : unsigned char {
    word,     // a new slot with that content
    overlay,  // a slot with the dictionary's attributes
    last,     // a dictionary without an index: this element and all later ones are ignored
    ignored,
  };

  static ProducedForm of(const Value& element);

  // Whether a name in an overlay's dictionary is that of an attribute.
  static bool isAttribute(std::string_view name) { return name != SpecialCharacters::indexKey(); }

  Kind kind;
  std::int32_t index = -1;              // of the matched slot; negative: a new slot
  const Dictionary* overlay = nullptr;  // of an overlay, with the index
};

// A reference to an attribute of a matched slot.
struct ReferenceForm {
  enum class Kind : unsigned char { complete, incomplete, notADictionary };

  static ReferenceForm of(const Value& value);

  Kind kind;
  std::int32_t index = 0;       // of the matched slot
  const Value* name = nullptr;  // of the attribute, a string; of a complete reference
};

// The fields of a conditional production.
struct ConditionalForm {
  static ConditionalForm of(const Dictionary& fields);

  std::string delimiter;
  const Array* signature = nullptr;        // of references; nullptr when it is not an array
  const Dictionary* expansions = nullptr;  // new productions; nullptr when it is not a dictionary
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_FORMAT_PRODUCTION_FORM_H_
