#include "tools/marlune/streams/answers.h"

#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <mutex>
#include <string>

#include "marlune/platform/quiet_write.h"
#include "tools/marlune/text/shown_text.h"
#include "tools/marlune/text/system_cause.h"

namespace marlune::tool {

namespace {

constexpr std::size_t kMostCollected = 65'536;  // bytes

// The lines that are to be written. Threads that log write them, too.
class Answers {
 public:
  void add(std::string_view line) {
    const std::lock_guard lock(_mutex);
    _text += line;
    if (_text.size() >= kMostCollected) _write();
    _throwFailure();
  }
  void flush() {
    const std::lock_guard lock(_mutex);
    _write();
    _throwFailure();
  }
  void flushQuietly() noexcept {
    const std::lock_guard lock(_mutex);
    _write();
  }

 private:
  // Reports a closed pipe as EPIPE, without the signal, so that the stack unwinds and the sound
  // file being rendered is closed properly.
  void _write() noexcept {
    for (std::string_view left = _text; !left.empty() && _error == 0;) {
      const ssize_t written = quietWrite(STDOUT_FILENO, left);
      if (written < 0) _error = errno;
      if (written > 0) left.remove_prefix(static_cast<std::size_t>(written));
    }
    _text.clear();
  }
  void _throwFailure() const {
    if (_error == EPIPE) throw NobodyReads();
    if (_error != 0) throw AnswerError("standard output cannot be written: " + systemCause(_error));
  }

  std::mutex _mutex;
  std::string _text;
  int _error = 0;  // of the first write that failed; nothing is written after it
};

// Never destroyed: a thread may log during process exit.
Answers& answers() {
  static auto* const answers = new Answers;
  return *answers;
}

}  // namespace

void writeAnswer(std::string_view line) { answers().add(shownLine(line)); }
void flushAnswers() { answers().flush(); }
void flushAnswersBeforeMessage() noexcept { answers().flushQuietly(); }

void writeText(std::string_view text) {
  answers().add(text);
  answers().flush();
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
