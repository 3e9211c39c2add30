#include "tools/marlune/speaking/last_words.h"

#include <unistd.h>

#include <array>

namespace marlune::tool {

namespace {

// Static storage, readable from a signal handler. A longer line is cut off.
std::array<char, 8'192> line;
std::size_t lineLength = 0;

void speakAndEnd(int signal) {
  static_cast<void>(!::write(STDERR_FILENO, line.data(), lineLength));
  std::raise(signal);  // SA_RESETHAND: this ends the process
}

void setUnlessIgnored(int signal, struct sigaction& former) {
  struct sigaction action = {};
  action.sa_handler = speakAndEnd;
  action.sa_flags = static_cast<int>(SA_RESETHAND | SA_NODEFER);
  ::sigaction(signal, &action, &former);
  // Background jobs of a shell start with SIGINT ignored; keep ignoring it.
  if (former.sa_handler == SIG_IGN) ::sigaction(signal, &former, nullptr);
}

}  // namespace

LastWords::LastWords(const std::string& sentence) {
  const std::string text = "marlune: " + sentence + "\n";
  lineLength = text.copy(line.data(), line.size());
  setUnlessIgnored(SIGINT, _formerInterrupt);
  setUnlessIgnored(SIGTERM, _formerTerminate);
}

LastWords::~LastWords() {
  ::sigaction(SIGINT, &_formerInterrupt, nullptr);
  ::sigaction(SIGTERM, &_formerTerminate, nullptr);
}

}  // namespace marlune::tool
