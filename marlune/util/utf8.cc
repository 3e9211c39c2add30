#include "marlune/util/utf8.h"

namespace marlune {

Utf8Character utf8CharacterAt(std::string_view text, std::size_t at) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[at + i]); };
  const unsigned lead = byte(0);
  if (lead < 0x80) return {1, lead};
  const std::size_t length = lead < 0xc2   ? 0
                             : lead < 0xe0 ? 2
                             : lead < 0xf0 ? 3
                             : lead < 0xf5 ? 4
                                           : 0;
  if (length == 0 || text.size() - at < length) return {0, 0};
  char32_t code = lead & (0x7fu >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xc0) != 0x80) return {0, 0};
    code = code << 6 | (byte(i) & 0x3f);
  }
  // Overlong forms, surrogates and numbers beyond the last character are not well-formed.
  constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  if (code < kSmallest[length] || code >> 11 == 0xd800 >> 11 || code > 0x10ffff) return {0, 0};
  return {length, code};
}

}  // namespace marlune
