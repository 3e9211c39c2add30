#include "marlune/grammar/format/rule_form.h"

#include "marlune/grammar/base/special_characters.h"

namespace marlune {

namespace {

const Value* fieldOf(const Dictionary& fields, const std::string& key) {
  const Value& value = fields.valueForKey(key);
  return value.isAbsent() ? nullptr : &value;
}

}  // namespace

PartForm partFormOf(const Value& value) {
  const auto& fields = value.asDictionary();
  if (!fields) return PartForm::none;
  return fields->contains(SpecialCharacters::lhsKey()) ? PartForm::rule : PartForm::directory;
}

bool isNameOfSubpart(std::string_view name) { return name != SpecialCharacters::orderKey(); }

RuleForm RuleForm::of(const Dictionary& fields) {
  return {fieldOf(fields, SpecialCharacters::lhsKey()),
          fieldOf(fields, SpecialCharacters::rhsKey()),
          fields.valueForKey(SpecialCharacters::repeatKey()).integerValue() != 0};
}

LeftHandSideForm LeftHandSideForm::of(const Dictionary& fields) {
  return {fieldOf(fields, SpecialCharacters::significantSlotsKey()),
          fieldOf(fields, SpecialCharacters::preContextKey()),
          fieldOf(fields, SpecialCharacters::postContextKey())};
}

}  // namespace marlune
