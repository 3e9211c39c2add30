#ifndef MARLUNE_TOOLS_MARLUNE_INPUT_PHRASE_INPUT_H_
#define MARLUNE_TOOLS_MARLUNE_INPUT_PHRASE_INPUT_H_

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/marlune/input/line_reader.h"

namespace marlune::tool {

using Words = std::vector<std::string>;

// A phrase to process and where it came from.
struct Phrase {
  Words words;
  std::size_t line = 0;      // in standard input, from 1; 0 for an argument
  std::string_view fault{};  // the limit it exceeds, in which case it has no words
};

// The phrases of a run, in order: one for each argument, or, without arguments, one for each line
// of standard input, read on demand.
class PhraseInput {
 public:
  explicit PhraseInput(std::vector<std::string> arguments)
      : _arguments(std::move(arguments)), _readsLines(_arguments.empty()) {}

  // Sets what is called before the input is waited for.
  void setBeforeWaiting(std::function<void()> work) { _lines.setBeforeWaiting(std::move(work)); }

  // The next phrase, or nothing at the end. An empty line is a phrase without words. Throws
  // InputError if standard input cannot be read.
  std::optional<Phrase> next();

 private:
  std::optional<LineReader::Line> _nextLine();

  std::vector<std::string> _arguments;
  const bool _readsLines;
  LineReader _lines;
  std::size_t _count = 0;
};

// Splits a line at blanks and tabs into words in normal form C. A carriage return counts as a
// blank, so that files with CR LF line ends can be piped in.
Words wordsOf(std::string_view line);

// Joins words or file names with single blanks.
std::string joined(const Words& words);

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_INPUT_PHRASE_INPUT_H_
