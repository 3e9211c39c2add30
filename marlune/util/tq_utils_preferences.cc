// The part of TQUtils that deals with preferences.

#include <algorithm>
#include <charconv>
#include <cmath>

#include "marlune/platform/platform.h"
#include "marlune/util/tq_utils.h"

namespace marlune {

namespace {

Value valueInDomain(std::string_view key, std::string_view domain) {
  const auto& preferences = Platform::shared().preferences;
  return preferences ? preferences->valueForKey(key, domain) : Value();
}

bool equalsIgnoringCase(std::string_view text, std::string_view lowerCase) {
  return std::equal(text.begin(), text.end(), lowerCase.begin(), lowerCase.end(),
                    [](char c, char lower) {
                      return (c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c) == lower;
                    });
}

// In settings written by hand, switches may also be text.
bool isTrue(const Value& value) {
  if (const std::string* text = value.asString()) {
    return *text == "1" || equalsIgnoringCase(*text, "yes") || equalsIgnoringCase(*text, "true");
  }
  return value.booleanValue();
}

std::optional<std::int64_t> integerInText(std::string_view text) {
  std::int64_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || rest != end) return std::nullopt;
  return number;
}

std::optional<std::int64_t> integerIn(const Value& value) {
  if (const std::string* text = value.asString()) return integerInText(*text);
  if (!value.isNumber() || std::isnan(value.realValue())) return std::nullopt;
  return value.int64();
}

}  // namespace

bool TQUtils::_lookUpDefault(std::string_view key, bool inPartnerDomain) {
  if (inPartnerDomain) return vexaUserDefaultsBoolForKey(key);
  return isTrue(valueInDomain(key, /*domain=*/""));
}

bool TQUtils::vexaUserDefaultsBoolForKey(std::string_view key) {
  return isTrue(valueInDomain(key, VexaPreferencesDomain));
}

std::optional<std::string> TQUtils::vexaUserDefaultsStringForKey(std::string_view key) {
  const Value value = valueInDomain(key, VexaPreferencesDomain);
  if (!value.asString()) return std::nullopt;
  return *value.asString();
}

std::optional<std::int64_t> TQUtils::vexaUserDefaultsNumberForKey(std::string_view key) {
  return integerIn(valueInDomain(key, VexaPreferencesDomain));
}

void TQUtils::vexaUserDefaultsSetString(std::string_view value, std::string_view forKey) {
  const auto& preferences = Platform::shared().preferences;
  if (!preferences) return;
  preferences->setValueForKey(Value::string(std::string(value)), forKey, VexaPreferencesDomain);
  preferences->synchronize(VexaPreferencesDomain);
}

void TQUtils::vexaUserDefaultsRemoveObjectForKey(std::string_view key) {
  const auto& preferences = Platform::shared().preferences;
  if (!preferences) return;
  preferences->setValueForKey(Value(), key, VexaPreferencesDomain);
  preferences->synchronize(VexaPreferencesDomain);
}

}  // namespace marlune
