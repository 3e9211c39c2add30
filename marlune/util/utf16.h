#ifndef MARLUNE_UTIL_UTF16_H_
#define MARLUNE_UTIL_UTF16_H_

#include <cstddef>
#include <optional>
#include <string_view>

// Counts UTF-8 text as if it were UTF-16: a character is one UTF-16 unit, so "über" has four and an
// emoji two. A byte that is not part of well-formed UTF-8 counts as one character.
namespace marlune {

// The number of UTF-16 units in `text`. ASCII takes a fast path.
std::size_t utf16Length(std::string_view text);

// The first or last `units` characters of `text`. Nothing when the text is shorter, or when the cut
// would fall inside a surrogate pair, because no text equals such a run.
std::optional<std::string_view> utf16Prefix(std::string_view text, std::size_t units);
std::optional<std::string_view> utf16Suffix(std::string_view text, std::size_t units);

}  // namespace marlune

#endif  // MARLUNE_UTIL_UTF16_H_
