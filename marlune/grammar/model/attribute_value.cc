#include "marlune/grammar/model/attribute_value.h"

#include "marlune/util/format.h"

namespace marlune {

AttributeValue AttributeValue::fromPlist(const Value& plist) {
  if (plist.asString()) return AttributeValue(plist.sharedString());
  return AttributeValue(std::make_shared<const Value>(plist));
}

const std::string* AttributeValue::asString() const {
  const auto* held = std::get_if<Text>(&_held);
  return held ? held->get() : nullptr;
}

const AttributeKey* AttributeValue::asAttributeKey() const {
  const auto* held = std::get_if<std::shared_ptr<AttributeKey>>(&_held);
  return held ? held->get() : nullptr;
}

const Value* AttributeValue::asOtherValue() const {
  const auto* held = std::get_if<std::shared_ptr<const Value>>(&_held);
  return held ? held->get() : nullptr;
}

AttributeValue::Text AttributeValue::sharedString() const {
  const auto* held = std::get_if<Text>(&_held);
  return held ? *held : nullptr;
}

bool AttributeValue::equals(const AttributeValue& other) const {
  const std::string* mine = asString();
  const std::string* theirs = other.asString();
  if (mine && theirs) return mine == theirs || *mine == *theirs;
  if (asOtherValue() && other.asOtherValue()) return asOtherValue()->equals(*other.asOtherValue());
  return asAttributeKey() && asAttributeKey() == other.asAttributeKey();
}

std::string AttributeValue::text() const {
  if (asString()) return *asString();
  if (asOtherValue()) return formatted("%@", {*asOtherValue()});
  return "<AttributeKey>";
}

}  // namespace marlune
