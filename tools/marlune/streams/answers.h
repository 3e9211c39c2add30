#ifndef MARLUNE_TOOLS_MARLUNE_STREAMS_ANSWERS_H_
#define MARLUNE_TOOLS_MARLUNE_STREAMS_ANSWERS_H_

#include <stdexcept>
#include <string_view>

// Writes to standard output; nothing else in the tool does.
namespace marlune::tool {

// Standard output cannot be written: the run ends with this message.
class AnswerError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The reader of standard output has closed it: the run ends as by SIGPIPE.
class NobodyReads : public std::exception {};

// Writes the answer to a phrase as one line, at once. Control characters appear as `shown` prints
// them. Throws AnswerError or NobodyReads if the whole line cannot be written.
void writeAnswer(std::string_view line);

// Writes text of the tool itself, such as that of --help, unchanged. Throws like writeAnswer.
void writeText(std::string_view text);

// Ends the process by SIGPIPE, even if the process was started with that signal ignored or blocked.
[[noreturn]] void endByBrokenPipe();

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_STREAMS_ANSWERS_H_
