#ifndef MARLUNE_GRAMMAR_MODEL_ATTRIBUTE_VALUE_H_
#define MARLUNE_GRAMMAR_MODEL_ATTRIBUTE_VALUE_H_

#include <memory>
#include <string>
#include <string_view>
#include <variant>

#include "marlune/grammar/model/attribute_key.h"
#include "marlune/platform/value.h"
#include "marlune/platform/visibility.h"

namespace marlune {

// The value of a cell's attribute. Nearly always a string. In a production's overlays it may be an
// AttributeKey that stands for a string of the matched words. It may also be any other value from a
// file (a number, an array), which equals no string. Never absent. Copies share the text.
class MARLUNE_API AttributeValue {
 public:
  using Text = std::shared_ptr<const std::string>;

  AttributeValue(std::string text)
      : AttributeValue(std::make_shared<const std::string>(std::move(text))) {}
  AttributeValue(std::string_view text) : AttributeValue(std::string(text)) {}
  AttributeValue(const char* text) : AttributeValue(std::string(text)) {}
  AttributeValue(Text text) : _held(std::move(text)) {}  // REQUIRES: not null
  AttributeValue(std::shared_ptr<AttributeKey> key)
      : _held(std::move(key)) {}  // REQUIRES: not null

  // A value from a file; shares its text. REQUIRES: not absent.
  static AttributeValue fromPlist(const Value& plist);

  // The value; nullptr when it is of another kind.
  const std::string* asString() const;
  const AttributeKey* asAttributeKey() const;
  const Value* asOtherValue() const;
  Text sharedString() const;

  // Whether both are equal strings, equal plist values of another kind, or the same AttributeKey.
  bool equals(const AttributeValue& other) const;

  // The text that "%@" shows: a string unchanged, any other value in its printed form.
  std::string text() const;

 private:
  explicit AttributeValue(std::shared_ptr<const Value> other) : _held(std::move(other)) {}

  std::variant<Text, std::shared_ptr<AttributeKey>, std::shared_ptr<const Value>> _held;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_ATTRIBUTE_VALUE_H_
