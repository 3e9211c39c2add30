#ifndef MARLUNE_TOOLS_MARLUNE_TEXT_SHOWN_TEXT_H_
#define MARLUNE_TOOLS_MARLUNE_TEXT_SHOWN_TEXT_H_

#include <string>
#include <string_view>

namespace marlune::tool {

// Text for output on one line. Each control character (U+0000 to U+001F, U+007F to U+009F) becomes
// \u{XX} with its number in hexadecimal, so that no word, key or path can start a new line or
// control the terminal. Everything else is unchanged, including backslashes and bytes that are not
// UTF-8.
std::string shown(std::string_view text);

// Like shown, with a line feed at the end.
std::string shownLine(std::string_view text);

// Like shown, for text that the library has laid out: line feeds and tabs are kept.
std::string shownLayout(std::string_view text);

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_TEXT_SHOWN_TEXT_H_
