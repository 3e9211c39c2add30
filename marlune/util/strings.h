#ifndef MARLUNE_UTIL_STRINGS_H_
#define MARLUNE_UTIL_STRINGS_H_

#include <string>
#include <string_view>

#include "marlune/platform/visibility.h"

// Scans of UTF-8 text by character. Whitespace is the blank, the line feed and the tab, and nothing
// else.
namespace marlune {

// Whether the text is exactly one whitespace character.
MARLUNE_API bool _isWhitespace(std::string_view text);

// The characters before the first whitespace character; all of them if there is none.
MARLUNE_API std::string _firstWord(std::string_view text);

// The text with each run of whitespace replaced by one blank and without its last character; meant
// for text that ends in a line break. A run that ends just before the last character leaves a blank
// only if that character is not whitespace. Empty text gives "". A last character of two UTF-16
// units is removed whole, so no half of a surrogate pair remains.
MARLUNE_API std::string _withoutExtraWhitespace(std::string_view text);

// The text without the brackets "[" and "]" and the text between them. Brackets do not nest: the
// first "]" ends the bracketed part. Blanks around the brackets are kept.
MARLUNE_API std::string _withoutBracketedWords(std::string_view text);

}  // namespace marlune

#endif  // MARLUNE_UTIL_STRINGS_H_
