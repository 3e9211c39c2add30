#include "tools/marlune/streams/answers.h"

#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "marlune/platform/quiet_write.h"
#include "tools/marlune/text/shown_text.h"
#include "tools/marlune/text/system_cause.h"

namespace marlune::tool {

void writeAnswer(std::string_view line) { writeText(shownLine(line)); }

// Reports a closed pipe as EPIPE, without the signal, so that the stack unwinds and the sound file
// being rendered is closed properly.
void writeText(std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = quietWrite(STDOUT_FILENO, text);
    if (written < 0 && errno == EPIPE) throw NobodyReads();
    if (written < 0) throw AnswerError("standard output cannot be written: " + systemCause(errno));
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

void endByBrokenPipe() {
  ::signal(SIGPIPE, SIG_DFL);
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGPIPE);
  ::sigprocmask(SIG_UNBLOCK, &set, nullptr);
  ::raise(SIGPIPE);
  std::abort();  // unreachable: the signal has ended the process
}

}  // namespace marlune::tool
