#include "tools/marlune/input/phrase_input.h"

#include <new>
#include <utility>

#include "marlune/desktop/text/normal_form.h"
#include "tools/marlune/input/phrase_limits.h"

namespace marlune::tool {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";

// Counts before any word is created: the longest line can hold eight million words.
bool hasTooManyWords(std::string_view line) {
  std::size_t count = 0;
  bool isInWord = false;
  for (const char c : line) {
    const bool wasInWord = std::exchange(isInWord, kBlanks.find(c) == std::string_view::npos);
    if (isInWord && !wasInWord && ++count > kMostWords) return true;
  }
  return false;
}

}  // namespace

std::optional<Phrase> PhraseInput::next() {
  const std::optional<LineReader::Line> line = _nextLine();
  if (!line) return std::nullopt;
  ++_count;
  Phrase phrase;
  if (_readsLines) phrase.line = _count;
  phrase.fault = line->fault;
  if (phrase.fault.empty() && hasTooManyWords(line->text)) phrase.fault = kTooManyWords;
  if (!phrase.fault.empty()) return phrase;
  try {
    phrase.words = wordsOf(line->text);
  } catch (const std::bad_alloc&) {
    phrase.fault = kOutOfMemory;
  }
  return phrase;
}

std::optional<LineReader::Line> PhraseInput::_nextLine() {
  if (_readsLines) return _lines.next();
  if (_count == _arguments.size()) return std::nullopt;
  return LineReader::Line{std::move(_arguments[_count])};
}

Words wordsOf(std::string_view line) {
  Words words;
  std::size_t start = line.find_first_not_of(kBlanks);
  while (start != std::string_view::npos) {
    const std::size_t end = line.find_first_of(kBlanks, start);
    words.push_back(inNormalFormC(line.substr(start, end - start)));
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
