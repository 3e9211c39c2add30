#include "tools/marlune/speaking/interruption.h"

namespace marlune::tool {

namespace {

volatile std::sig_atomic_t signalThatCame = 0;

void note(int signal) { signalThatCame = signal; }

}  // namespace

Interruption::Interruption() {
  signalThatCame = 0;
  struct sigaction action = {};
  action.sa_handler = note;
  sigaction(SIGINT, &action, &_formerInterrupt);
  // Background jobs of a shell start with SIGINT ignored; keep ignoring it.
  if (_formerInterrupt.sa_handler == SIG_IGN) sigaction(SIGINT, &_formerInterrupt, nullptr);
  sigaction(SIGTERM, &action, &_formerTerminate);
}

Interruption::~Interruption() {
  sigaction(SIGINT, &_formerInterrupt, nullptr);
  sigaction(SIGTERM, &_formerTerminate, nullptr);
}

bool Interruption::hasCome() const { return signalThatCame != 0; }

void Interruption::passOn() {
  if (!hasCome()) return;
  sigaction(SIGINT, &_formerInterrupt, nullptr);
  sigaction(SIGTERM, &_formerTerminate, nullptr);
  std::raise(signalThatCame);
}

}  // namespace marlune::tool
