#include "tools/marlune/phrase_input.h"

namespace marlune::tool {

std::optional<Phrase> PhraseInput::next() {
  Phrase phrase;
  if (!_arguments.empty()) {
    if (_count == _arguments.size()) return std::nullopt;
    phrase.text = _arguments[_count++];
  } else {
    if (!std::getline(_lines, phrase.text)) return std::nullopt;
    phrase.line = ++_count;
  }
  phrase.words = wordsOf(phrase.text);
  return phrase;
}

Words wordsOf(std::string_view line) {
  constexpr std::string_view kBlanks = " \t\r\n";
  Words words;
  std::size_t start = line.find_first_not_of(kBlanks);
  while (start != std::string_view::npos) {
    const std::size_t end = line.find_first_of(kBlanks, start);
    words.emplace_back(line.substr(start, end - start));
    start = line.find_first_not_of(kBlanks, end);
  }
  return words;
}

std::string joined(const Words& words) {
  std::string line;
  for (const std::string& word : words) {
    if (!line.empty()) line += ' ';
    line += word;
  }
  return line;
}

}  // namespace marlune::tool
