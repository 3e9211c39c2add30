#include "marlune/util/utf16.h"

#include <cstdint>

#include "marlune/util/utf8.h"

namespace marlune {

namespace {

struct Character {
  std::size_t bytes;
  std::size_t units;
};

// The character at `at`, a byte index inside the text.
Character characterAt(std::string_view text, std::size_t at) {
  const Utf8Character character = utf8CharacterAt(text, at);
  if (character.bytes == 0) return {1, 1};
  return {character.bytes, character.code > 0xffff ? std::size_t{2} : std::size_t{1}};
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
