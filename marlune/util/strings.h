#ifndef MARLUNE_UTIL_STRINGS_H_
#define MARLUNE_UTIL_STRINGS_H_

#include <string>
#include <string_view>

// Scans of UTF-8 text, character by character. Whitespace is the blank, the line feed and the tab,
// and nothing else.
namespace marlune {

// Whether the whole text is one whitespace character.
bool _isWhitespace(std::string_view text);

// The characters before the first whitespace character, or all.
std::string _firstWord(std::string_view text);

// The text with each run of whitespace made one blank, and without its last character: it suits
// text that ends in a line break. A run that reaches up to the last character leaves a blank only
// if that character is not whitespace. Empty text gives "". Half a surrogate pair is never left
// behind: a last character that counts two UTF-16 units is dropped whole.
std::string _withoutExtraWhitespace(std::string_view text);

// The text without what stands between "[" and "]" and without these. Brackets do not nest: the
// first "]" ends the bracketed part. Blanks around it are kept.
std::string _withoutBracketedWords(std::string_view text);

}  // namespace marlune

#endif  // MARLUNE_UTIL_STRINGS_H_
