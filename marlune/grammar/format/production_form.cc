#include "marlune/grammar/format/production_form.h"

#include "marlune/util/format.h"

namespace marlune {

ProductionForm productionFormOf(const Value& rightHandSide) {
  switch (rightHandSide.kind()) {
    case Value::Kind::array:
      return ProductionForm::newProduction;
    case Value::Kind::dictionary:
      return ProductionForm::conditional;
    default:
      return ProductionForm::none;
  }
}

ProducedForm ProducedForm::of(const Value& element) {
  if (element.kind() == Value::Kind::string) return {Kind::word};
  if (element.kind() != Value::Kind::dictionary) return {Kind::ignored};
  const Dictionary& fields = *element.asDictionary();
  const Value& index = fields.valueForKey(SpecialCharacters::indexKey());
  if (!index.isNumber()) return {Kind::last};
  return {Kind::overlay, index.integerValue(), &fields};
}

ReferenceForm ReferenceForm::of(const Value& value) {
  const auto& fields = value.asDictionary();
  if (!fields) return {Kind::notADictionary};
  const Value& index = fields->valueForKey(SpecialCharacters::indexKey());
  const Value& name = fields->valueForKey(SpecialCharacters::attributeNameKey());
  if (!index.isNumber() || !name.asString()) return {Kind::incomplete};
  return {Kind::complete, index.integerValue(), &name};
}

ConditionalForm ConditionalForm::of(const Dictionary& fields) {
  ConditionalForm form;
  const Value& delimiter = fields.valueForKey(SpecialCharacters::delimiterKey());
  form.delimiter = delimiter.isAbsent() ? SpecialCharacters::defaultSignatureDelimiter()
                                        : formatted("%@", {delimiter});
  form.signature = fields.valueForKey(SpecialCharacters::signatureKey()).asArray().get();
  form.expansions = fields.valueForKey(SpecialCharacters::expansionsKey()).asDictionary().get();
  return form;
}

}  // namespace marlune
