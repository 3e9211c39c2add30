#include "marlune/desktop/plist/scalar_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <limits>

#include "marlune/desktop/plist/property_list_error.h"

namespace marlune {

namespace {

namespace chrono = std::chrono;

constexpr chrono::sys_days kReferenceDay = chrono::year(2001) / 1 / 1;
constexpr std::string_view kBase64 =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

[[noreturn]] void failExpecting(std::string_view expected, std::string_view found) {
  throw PropertyListError{"expected " + std::string(expected) + ", found " + quotedExcerpt(found)};
}

// Removes a sign from the front of `text`. Returns whether it was a minus.
bool takeSign(std::string_view& text) {
  if (text.empty() || (text.front() != '-' && text.front() != '+')) return false;
  const bool isNegative = text.front() == '-';
  text.remove_prefix(1);
  return isNegative;
}

// Removes exactly `digits` digits and then `after` from the front of `text`. With `after` 0, the
// text must end after the digits.
std::optional<int> takeNumber(std::string_view& text, std::size_t digits, char after = 0) {
  const std::size_t length = digits + (after ? 1 : 0);
  if (text.size() < length || (after && text[digits] != after)) return std::nullopt;
  int number = 0;
  for (const char c : text.substr(0, digits)) {
    if (c < '0' || c > '9') return std::nullopt;
    number = number * 10 + (c - '0');
  }
  text.remove_prefix(length);
  return number;
}

// Removes a fraction such as ".25" from the front of `text` and returns it in milliseconds; further
// digits are dropped. 0 if there is no fraction.
std::optional<int> takeMilliseconds(std::string_view& text) {
  if (text.empty() || text.front() != '.') return 0;
  text.remove_prefix(1);
  const std::size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
  if (digits == 0) return std::nullopt;
  int milliseconds = 0;
  for (std::size_t i = 0; i < 3; ++i) {
    milliseconds = milliseconds * 10 + (i < digits ? text[i] - '0' : 0);
  }
  text.remove_prefix(digits);
  return milliseconds;
}

std::optional<chrono::milliseconds> timeFromText(std::string_view text) {
  const auto year = takeNumber(text, 4, '-'), month = takeNumber(text, 2, '-');
  const auto day = takeNumber(text, 2, 'T'), hour = takeNumber(text, 2, ':');
  const auto minute = takeNumber(text, 2, ':'), second = takeNumber(text, 2);
  if (!year || !month || !day || !hour || !minute || !second) return std::nullopt;
  const auto milliseconds = takeMilliseconds(text);
  if (!milliseconds || text != "Z") return std::nullopt;
  const chrono::year_month_day date(chrono::year(*year),
                                    chrono::month(static_cast<unsigned>(*month)),
                                    chrono::day(static_cast<unsigned>(*day)));
  if (!date.ok() || *year == 0 || *hour > 23 || *minute > 59 || *second > 59) return std::nullopt;
  return chrono::sys_days(date) - kReferenceDay + chrono::hours(*hour) + chrono::minutes(*minute) +
         chrono::seconds(*second) + chrono::milliseconds(*milliseconds);
}

constexpr std::array<signed char, 256> base64Digits() {
  std::array<signed char, 256> digits{};
  for (signed char& each : digits) each = -1;
  for (std::size_t i = 0; i < kBase64.size(); ++i) {
    digits[static_cast<unsigned char>(kBase64[i])] = static_cast<signed char>(i);
  }
  return digits;
}

}  // namespace

std::int64_t integerFromText(std::string_view text) {
  constexpr std::string_view kExpected = "an integer of 64 bits";
  std::string_view digits = trimmed(text);
  const bool isNegative = takeSign(digits);
  const bool isHexadecimal = digits.starts_with("0x") || digits.starts_with("0X");
  if (isHexadecimal) digits.remove_prefix(2);
  std::uint64_t magnitude = 0;
  const char* end = digits.data() + digits.size();
  const auto [stop, error] =
      std::from_chars(digits.data(), end, magnitude, isHexadecimal ? 16 : 10);
  const std::uint64_t largest =
      std::uint64_t{std::numeric_limits<std::int64_t>::max()} + (isNegative ? 1 : 0);
  if (error != std::errc() || stop != end || magnitude > largest) failExpecting(kExpected, text);
  return static_cast<std::int64_t>(isNegative ? 0 - magnitude : magnitude);
}

double realFromText(std::string_view text) {
  std::string_view digits = trimmed(text);
  const bool isNegative = takeSign(digits);
  double number = 0;
  const char* end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, number);
  if (error != std::errc() || stop != end || digits.front() == '-') {
    failExpecting("a number", text);
  }
  return isNegative ? -number : number;
}

std::string textFromReal(double number) {
  if (std::isnan(number)) return "nan";
  if (std::isinf(number)) return number < 0 ? "-infinity" : "+infinity";
  std::array<char, 40> text;
  const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), number);
  return std::string(text.data(), end);
}

double dateFromText(std::string_view text) {
  const auto time = timeFromText(trimmed(text));
  if (!time) failExpecting("a date such as 2014-03-03T10:07:05Z", text);
  return static_cast<double>(time->count()) / 1000;
}

std::optional<double> dateInRange(double secondsSince2001) {
  constexpr double kFirst = -63113904000, kLast = 252423993600;  // start of the years 1 and 10000
  if (!(secondsSince2001 >= kFirst && secondsSince2001 < kLast - 1)) return std::nullopt;
  return std::round(secondsSince2001 * 1000) / 1000;
}

std::string textFromDate(double secondsSince2001) {
  const chrono::milliseconds time(std::llround(secondsSince2001 * 1000));
  const auto days = chrono::floor<chrono::days>(time);
  const chrono::year_month_day date(kReferenceDay + days);
  const chrono::hh_mm_ss clock(time - days);
  std::array<char, 64> text;
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d",
                static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                static_cast<unsigned>(date.day()), static_cast<int>(clock.hours().count()),
                static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()));
  std::string result = text.data();
  if (const auto fraction = clock.subseconds().count()) {
    std::snprintf(text.data(), text.size(), ".%03d", static_cast<int>(fraction));
    result += text.data();
  }
  return result + 'Z';
}

std::string bytesFromBase64(std::string_view text) {
  static constexpr std::array<signed char, 256> kDigits = base64Digits();
  std::string bytes;
  bytes.reserve(text.size() / 4 * 3);
  std::uint32_t bits = 0;
  int digits = 0, paddings = 0;
  for (const char c : text) {
    if (isBlank(c)) continue;
    const int digit = c == '=' ? 0 : kDigits[static_cast<unsigned char>(c)];
    if (digit < 0 || (paddings > 0 && c != '=')) failExpecting("base64", text);
    if (c == '=') ++paddings;
    bits = bits << 6 | static_cast<std::uint32_t>(digit);
    if (++digits % 4 != 0) continue;
    for (const int shift : {16, 8, 0}) bytes += static_cast<char>(bits >> shift & 0xff);
  }
  if (digits % 4 != 0 || paddings > 2) failExpecting("base64 in groups of four", text);
  bytes.resize(bytes.size() - static_cast<std::size_t>(paddings));
  return bytes;
}

std::string base64FromBytes(std::string_view bytes) {
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::string_view group = bytes.substr(i, 3);
    std::uint32_t bits = 0;
    for (std::size_t j = 0; j < 3; ++j) {
      bits = bits << 8 | (j < group.size() ? static_cast<unsigned char>(group[j]) : 0u);
    }
    for (std::size_t j = 0; j < 4; ++j) {
      text += j > group.size() ? '=' : kBase64[bits >> (18 - 6 * j) & 0x3f];
    }
  }
  return text;
}

}  // namespace marlune
