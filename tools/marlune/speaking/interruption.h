#ifndef MARLUNE_TOOLS_MARLUNE_SPEAKING_INTERRUPTION_H_
#define MARLUNE_TOOLS_MARLUNE_SPEAKING_INTERRUPTION_H_

#include <csignal>

namespace marlune::tool {

// While one exists, SIGINT and SIGTERM are recorded instead of ending the process, so that the
// sound can be stopped first. At most one may exist at a time.
class Interruption {
 public:
  Interruption();
  ~Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

  bool hasCome() const;

  // Restores the former handlers and raises the recorded signal again, which ends the process, so
  // that the shell sees an interrupted program. Does nothing if no signal was recorded.
  void passOn();

 private:
  struct sigaction _formerInterrupt = {};
  struct sigaction _formerTerminate = {};
};

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_SPEAKING_INTERRUPTION_H_
