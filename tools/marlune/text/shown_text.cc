#include "tools/marlune/text/shown_text.h"

#include <cstddef>

namespace marlune::tool {

namespace {

// Length in bytes of the control character at the start of `text`; 0 if there is none.
std::size_t controlLength(std::string_view text) {
  const auto first = static_cast<unsigned char>(text[0]);
  if (first < 0x20 || first == 0x7F) return 1;
  // U+0080 to U+009F take two bytes in UTF-8; the second byte equals the number.
  if (first != 0xC2 || text.size() < 2) return 0;
  const auto second = static_cast<unsigned char>(text[1]);
  return second >= 0x80 && second <= 0x9F ? 2 : 0;
}

std::string shownExcept(std::string_view kept, std::string_view text) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::size_t length = controlLength(text.substr(i));
    if (length == 0 || kept.find(text[i]) != std::string_view::npos) {
      result += text[i];
      continue;
    }
    i += length - 1;
    const auto number = static_cast<unsigned char>(text[i]);
    ((result += "\\u{") += kDigits[number >> 4U]) += kDigits[number & 0xFU];
    result += '}';
  }
  return result;
}

}  // namespace

std::string shown(std::string_view text) { return shownExcept("", text); }

std::string shownLine(std::string_view text) { return shown(text) + '\n'; }

std::string shownLayout(std::string_view text) { return shownExcept("\n\t", text); }

}  // namespace marlune::tool
