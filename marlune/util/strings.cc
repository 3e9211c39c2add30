#include "marlune/util/strings.h"

#include "marlune/util/utf16.h"

namespace marlune {

namespace {

// All characters searched for are ASCII, and UTF-8 never uses those bytes inside another character,
// so the scans work on bytes.
constexpr std::string_view kWhitespace = " \n\t";

bool isWhitespace(char c) { return kWhitespace.find(c) != std::string_view::npos; }

// The index in bytes at which the last character begins. `text` is not empty.
std::size_t startOfLastCharacter(std::string_view text) {
  const auto unit = utf16Suffix(text, 1);
  return text.size() - (unit ? *unit : *utf16Suffix(text, 2)).size();
}

}  // namespace

bool _isWhitespace(std::string_view text) { return text.size() == 1 && isWhitespace(text[0]); }

std::string _firstWord(std::string_view text) {
  return std::string(text.substr(0, text.find_first_of(kWhitespace)));
}

std::string _withoutExtraWhitespace(std::string_view text) {
  if (text.empty()) return {};
  const std::size_t last = startOfLastCharacter(text);
  std::string result;
  result.reserve(last);
  for (std::size_t i = 0; i < last; ++i) {
    if (!isWhitespace(text[i])) {
      result += text[i];
    } else if (!isWhitespace(text[i + 1])) {
      result += ' ';
    }
  }
  return result;
}

std::string _withoutBracketedWords(std::string_view text) {
  std::string result;
  bool inside = false;
  for (const char c : text) {
    if (c == '[' || c == ']') {
      inside = c == '[';
    } else if (!inside) {
      result += c;
    }
  }
  return result;
}

}  // namespace marlune
