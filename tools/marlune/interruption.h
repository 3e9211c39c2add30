#ifndef MARLUNE_TOOLS_MARLUNE_INTERRUPTION_H_
#define MARLUNE_TOOLS_MARLUNE_INTERRUPTION_H_

#include <csignal>

namespace marlune::tool {

// While it stands, Ctrl-C and a request to terminate are noted instead of ending the process, so
// that the sound can be stopped first. One at a time.
class Interruption {
 public:
  Interruption();
  ~Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

  bool hasCome() const;

  // Lets the signal that came do what it would have done: end the process. Does nothing when none
  // came. The shell then sees an interrupted program.
  void passOn();

 private:
  struct sigaction _formerInterrupt = {};
  struct sigaction _formerTerminate = {};
};

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_INTERRUPTION_H_
