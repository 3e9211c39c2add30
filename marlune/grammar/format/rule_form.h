#ifndef MARLUNE_GRAMMAR_FORMAT_RULE_FORM_H_
#define MARLUNE_GRAMMAR_FORMAT_RULE_FORM_H_

#include <string_view>

#include "marlune/platform/value.h"

namespace marlune {

// What a value in a grammar's tree is: a dictionary with a left-hand side is a rule, any other
// dictionary a directory. Nothing else is part of the grammar.
enum class PartForm : unsigned char { none, directory, rule };
PartForm partFormOf(const Value& value);

// Whether an entry of a directory may be a part of it.
bool isNameOfSubpart(std::string_view name);

// The fields of a rule. Pointers point into the list; nullptr where a key is missing.
struct RuleForm {
  static RuleForm of(const Dictionary& fields);

  const Value* leftHandSide;
  const Value* rightHandSide;
  bool repeats;
};

// The fields of a left-hand side, each an array of slots if it is well-formed.
struct LeftHandSideForm {
  static LeftHandSideForm of(const Dictionary& fields);

  const Value* significantSlots;
  const Value* preContext;
  const Value* postContext;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_FORMAT_RULE_FORM_H_
