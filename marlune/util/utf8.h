#ifndef MARLUNE_UTIL_UTF8_H_
#define MARLUNE_UTIL_UTF8_H_

#include <cstddef>
#include <string_view>

#include "marlune/platform/visibility.h"

namespace marlune {

// A character of a UTF-8 text.
struct Utf8Character {
  std::size_t bytes;  // 0 if the text is not well-formed there
  char32_t code;
};

// The character that begins at `at`, a byte index inside the text.
MARLUNE_INTERNAL_API Utf8Character utf8CharacterAt(std::string_view text, std::size_t at);

}  // namespace marlune

#endif  // MARLUNE_UTIL_UTF8_H_
