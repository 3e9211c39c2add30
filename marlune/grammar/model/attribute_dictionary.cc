#include "marlune/grammar/model/attribute_dictionary.h"

#include "marlune/grammar/base/special_characters.h"

namespace marlune {

std::shared_ptr<AttributeDictionary> AttributeDictionary::fromPlist(const Dictionary& plist) {
  auto attributes = std::make_shared<AttributeDictionary>();
  attributes->reserve(plist.count());
  for (const auto& [name, value] : plist.entries()) {
    attributes->_entries.emplace_back(name, AttributeValue::fromPlist(value));
  }
  return attributes;
}

const AttributeDictionary::Name& AttributeDictionary::contentName() {
  // Owns nothing: the text lives as long as the process, and copies count no references.
  static const Name kName(std::shared_ptr<const void>(), &SpecialCharacters::contentKey());
  return kName;
}

const AttributeValue* AttributeDictionary::valueForKey(std::string_view name) const {
  return const_cast<AttributeDictionary*>(this)->_find(name);
}

void AttributeDictionary::setValueForKey(AttributeValue value, std::string_view name) {
  if (AttributeValue* held = _find(name)) {
    *held = std::move(value);
  } else {
    _entries.emplace_back(std::make_shared<const std::string>(name), std::move(value));
  }
}

void AttributeDictionary::setValueForKey(AttributeValue value, const Name& name) {
  if (AttributeValue* held = _find(*name)) {
    *held = std::move(value);
  } else {
    _entries.emplace_back(name, std::move(value));
  }
}

std::shared_ptr<AttributeDictionary> AttributeDictionary::oneLevelCopy() const {
  return std::make_shared<AttributeDictionary>(*this);
}

Value AttributeDictionary::asPlist() const {
  auto plist = std::make_shared<Dictionary>();
  for (const auto& [name, value] : _entries) {
    plist->setValueForKey(
        value.asOtherValue() ? *value.asOtherValue() : Value::string(value.text()), name);
  }
  return Value::dictionary(std::move(plist));
}

AttributeValue* AttributeDictionary::_find(std::string_view name) {
  for (auto& [held, value] : _entries) {
    if (*held == name) return &value;
  }
  return nullptr;
}

}  // namespace marlune
