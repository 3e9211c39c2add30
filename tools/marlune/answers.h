#ifndef MARLUNE_TOOLS_MARLUNE_ANSWERS_H_
#define MARLUNE_TOOLS_MARLUNE_ANSWERS_H_

#include <stdexcept>
#include <string_view>

// All that the tool writes to standard output.
namespace marlune::tool {

// Standard output cannot be written: the run ends with this sentence.
class AnswerError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Nobody reads standard output any more: the run ends as SIGPIPE ends it.
class NobodyReads : public std::exception {};

// Writes the answer to a phrase at once, as one line: control characters as `shown` prints them.
// Throws AnswerError or NobodyReads when the line could not be written whole.
void writeAnswer(std::string_view line);

// Writes text of the tool's own, such as that of --help, as it is. Throws as writeAnswer does.
void writeText(std::string_view text);

// Ends the process by SIGPIPE, whatever the process was started with for this signal.
[[noreturn]] void endByBrokenPipe();

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_ANSWERS_H_
