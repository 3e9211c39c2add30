#include "marlune/util/utf16.h"

#include <cstdint>

namespace marlune {

namespace {

struct Character {
  std::size_t bytes;
  std::size_t units;
};

bool isContinuation(std::string_view text, std::size_t at) {
  return at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80;
}

// The character at `at`, a byte index inside the text.
Character characterAt(std::string_view text, std::size_t at) {
  const auto lead = static_cast<unsigned char>(text[at]);
  const auto next = at + 1 < text.size() ? static_cast<unsigned char>(text[at + 1]) : 0;
  if (lead >= 0xC2 && lead <= 0xDF && isContinuation(text, at + 1)) return {2, 1};
  if (lead >= 0xE0 && lead <= 0xEF && isContinuation(text, at + 1) &&
      isContinuation(text, at + 2) && (lead != 0xE0 || next >= 0xA0) &&
      (lead != 0xED || next < 0xA0)) {
    return {3, 1};
  }
  if (lead >= 0xF0 && lead <= 0xF4 && isContinuation(text, at + 1) &&
      isContinuation(text, at + 2) && isContinuation(text, at + 3) &&
      (lead != 0xF0 || next >= 0x90) && (lead != 0xF4 || next < 0x90)) {
    return {4, 2};
  }
  return {1, 1};
}

bool isAscii(std::string_view text) {
  std::uint8_t bits = 0;
  for (const char c : text) bits |= static_cast<std::uint8_t>(c);
  return bits < 0x80;
}

// The number of bytes in the first `units` UTF-16 units.
std::optional<std::size_t> bytesOfUnits(std::string_view text, std::size_t units) {
  std::size_t at = 0;
  while (units > 0) {
    if (at == text.size()) return std::nullopt;
    const Character next = characterAt(text, at);
    if (next.units > units) return std::nullopt;
    at += next.bytes;
    units -= next.units;
  }
  return at;
}

}  // namespace

std::size_t utf16Length(std::string_view text) {
  if (isAscii(text)) return text.size();
  std::size_t units = 0;
  for (std::size_t at = 0; at < text.size();) {
    const Character next = characterAt(text, at);
    units += next.units;
    at += next.bytes;
  }
  return units;
}

std::optional<std::string_view> utf16Prefix(std::string_view text, std::size_t units) {
  const std::optional<std::size_t> bytes = bytesOfUnits(text, units);
  if (!bytes) return std::nullopt;
  return text.substr(0, *bytes);
}

std::optional<std::string_view> utf16Suffix(std::string_view text, std::size_t units) {
  const std::size_t length = utf16Length(text);
  if (units > length) return std::nullopt;
  const std::optional<std::size_t> bytes = bytesOfUnits(text, length - units);
  if (!bytes) return std::nullopt;
  return text.substr(*bytes);
}

}  // namespace marlune
