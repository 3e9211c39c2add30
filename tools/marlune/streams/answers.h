#ifndef MARLUNE_TOOLS_MARLUNE_STREAMS_ANSWERS_H_
#define MARLUNE_TOOLS_MARLUNE_STREAMS_ANSWERS_H_

#include <stdexcept>
#include <string_view>

// Writes to standard output; nothing else in the tool does. Answers are collected, because a write
// for each of a million lines takes longer than the answers themselves.
namespace marlune::tool {

// Standard output cannot be written: the run ends with this message.
class AnswerError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The reader of standard output has closed it: the run ends as by SIGPIPE.
class NobodyReads : public std::exception {};

// Adds the answer to a phrase, as one line, to those that are to be written. Control characters
// appear as `shown` prints them. Throws AnswerError or NobodyReads if collected lines cannot be
// written.
void writeAnswer(std::string_view line);

// Writes the collected lines: before the tool waits for input, before a phrase is played, and at
// the end. Throws like writeAnswer.
void flushAnswers();

// The same before anything is written to standard error, which may be the same terminal. On any
// thread. A failure is thrown by the next call of the functions above.
void flushAnswersBeforeMessage() noexcept;

// Writes text of the tool itself, such as that of --help, unchanged and at once. Throws like
// writeAnswer.
void writeText(std::string_view text);

// Ends the process by SIGPIPE, even if the process was started with that signal ignored or blocked.
[[noreturn]] void endByBrokenPipe();

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_STREAMS_ANSWERS_H_
