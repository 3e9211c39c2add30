#include "marlune/desktop/plist/property_list_error.h"

namespace marlune {

std::string onOneLine(std::string_view text) {
  std::string line(text);
  for (char& c : line) {
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) c = '?';
  }
  return line;
}

std::string quotedExcerpt(std::string_view text) {
  constexpr std::size_t kLongest = 60;
  if (text.size() <= kLongest) return '"' + onOneLine(text) + '"';
  std::size_t end = kLongest;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xc0) == 0x80) --end;
  return '"' + onOneLine(text.substr(0, end)) + "...\"";
}

}  // namespace marlune
