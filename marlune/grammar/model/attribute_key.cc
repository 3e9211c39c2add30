#include "marlune/grammar/model/attribute_key.h"

#include "marlune/grammar/base/make_shared_of.h"
#include "marlune/grammar/base/special_characters.h"
#include "marlune/grammar/format/production_form.h"
#include "marlune/util/tq_utils.h"

namespace marlune {

AttributeKey::AttributeKey(std::int32_t index, std::shared_ptr<const std::string> key)
    : _key(std::move(key)), _index(index) {}

std::shared_ptr<AttributeKey> AttributeKey::initWithIndex(
    std::int32_t index, std::shared_ptr<const std::string> attributeName) {
  return makeSharedOf<AttributeKey>(index, std::move(attributeName));
}

std::shared_ptr<AttributeKey> AttributeKey::initFromPlist(const Value& plist) {
  const ReferenceForm form = ReferenceForm::of(plist);
  switch (form.kind) {
    case ReferenceForm::Kind::complete:
      return initWithIndex(form.index, form.name->sharedString());
    case ReferenceForm::Kind::incomplete:
      TQUtils::systemLog(
          "ERROR: AttributeKey expected two entries, a Number '%@' and a String '%@'.",
          SpecialCharacters::indexKey(), SpecialCharacters::attributeNameKey());
      break;
    case ReferenceForm::Kind::notADictionary:
      TQUtils::systemLog("ERROR: AttributeKey expected a dictionary. Found a %@.",
                         plist.kindName());
      break;
  }
  return nullptr;
}

std::shared_ptr<AttributeKey> AttributeKey::instanceFromPlist(const Value& plist) {
  return initFromPlist(plist);
}

}  // namespace marlune
