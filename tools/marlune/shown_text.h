#ifndef MARLUNE_TOOLS_MARLUNE_SHOWN_TEXT_H_
#define MARLUNE_TOOLS_MARLUNE_SHOWN_TEXT_H_

#include <string>
#include <string_view>

namespace marlune::tool {

// Text as the tool prints it on one line: each control character (U+0000 to U+001F, U+007F to
// U+009F) as \u{XX} with its number in hexadecimal, so that no word, key or path starts a new line
// or controls the terminal. Everything else stays, a backslash and bytes that are not UTF-8
// included.
std::string shown(std::string_view text);

// The same with a line feed at the end.
std::string shownLine(std::string_view text);

// The same for text that the library laid out itself: its line feeds and tabs stay.
std::string shownLayout(std::string_view text);

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_SHOWN_TEXT_H_
