#include "marlune/grammar/model/attribute_key.h"

#include "marlune/grammar/base/make_shared_of.h"
#include "marlune/grammar/base/special_characters.h"
#include "marlune/util/tq_utils.h"

namespace marlune {

AttributeKey::AttributeKey(std::int32_t index, std::shared_ptr<const std::string> key)
    : _key(std::move(key)), _index(index) {}

std::shared_ptr<AttributeKey> AttributeKey::initWithIndex(
    std::int32_t index, std::shared_ptr<const std::string> attributeName) {
  return makeSharedOf<AttributeKey>(index, std::move(attributeName));
}

std::shared_ptr<AttributeKey> AttributeKey::initFromPlist(const Value& plist) {
  const auto& fields = plist.asDictionary();
  if (!fields) {
    TQUtils::systemLog("ERROR: AttributeKey expected a dictionary. Found a %@.", plist.kindName());
    return nullptr;
  }
  const Value& index = fields->valueForKey(SpecialCharacters::indexKey());
  const Value& name = fields->valueForKey(SpecialCharacters::attributeNameKey());
  if (!index.isNumber() || !name.asString()) {
    TQUtils::systemLog("ERROR: AttributeKey expected two entries, a Number '%@' and a String '%@'.",
                       SpecialCharacters::indexKey(), SpecialCharacters::attributeNameKey());
    return nullptr;
  }
  return initWithIndex(index.integerValue(), name.sharedString());
}

std::shared_ptr<AttributeKey> AttributeKey::instanceFromPlist(const Value& plist) {
  return initFromPlist(plist);
}

}  // namespace marlune
