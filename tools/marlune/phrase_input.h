#ifndef MARLUNE_TOOLS_MARLUNE_PHRASE_INPUT_H_
#define MARLUNE_TOOLS_MARLUNE_PHRASE_INPUT_H_

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/marlune/line_reader.h"

namespace marlune::tool {

using Words = std::vector<std::string>;

// A phrase to work on, and where it came from.
struct Phrase {
  Words words;
  std::size_t line = 0;      // in standard input, from 1; 0 for an argument
  std::string_view fault{};  // which limit it exceeds, and so has no words; else empty
};

// The phrases of a run, one after the other: the arguments, one phrase each, or without any the
// lines of standard input, each read only when it is asked for.
class PhraseInput {
 public:
  explicit PhraseInput(std::vector<std::string> arguments)
      : _arguments(std::move(arguments)), _readsLines(_arguments.empty()) {}

  // The next phrase; nothing at the end. An empty line is a phrase without words. Throws InputError
  // when standard input cannot be read.
  std::optional<Phrase> next();

 private:
  std::optional<LineReader::Line> _nextLine();

  std::vector<std::string> _arguments;
  const bool _readsLines;
  LineReader _lines;
  std::size_t _count = 0;
};

// The words of a line, in normal form C: what stands between blanks and tabs. A carriage return
// counts as a blank, so that files from other systems can be piped in.
Words wordsOf(std::string_view line);

// The words of a phrase, or file names, with one blank between them.
std::string joined(const Words& words);

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_PHRASE_INPUT_H_
