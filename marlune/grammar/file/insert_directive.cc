#include "marlune/grammar/file/insert_directive.h"

#include "marlune/grammar/base/special_characters.h"

namespace marlune {

bool isInsertDirective(const Value& value) {
  const std::string* text = value.asString();
  return text && text->starts_with(SpecialCharacters::insertDirective());
}

std::vector<std::string> piecesOf(std::string_view text, char separator) {
  std::vector<std::string> found;
  while (true) {
    const std::size_t end = text.find(separator);
    found.emplace_back(text.substr(0, end));
    if (end == std::string_view::npos) return found;
    text.remove_prefix(end + 1);
  }
}

}  // namespace marlune
