#include "marlune/platform/quiet_write.h"

#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>

namespace marlune {

namespace {

constexpr int kSignals[] = {SIGPIPE, SIGXFSZ};

// Blocks the signals of a failing write for the calling thread.
class HeldSignals {
 public:
  HeldSignals() {
    sigemptyset(&_set);
    for (const int signal : kSignals) sigaddset(&_set, signal);
    sigemptyset(&_formerlyPending);
    sigpending(&_formerlyPending);
    pthread_sigmask(SIG_BLOCK, &_set, &_formerMask);
  }
  ~HeldSignals() { pthread_sigmask(SIG_SETMASK, &_formerMask, nullptr); }
  HeldSignals(const HeldSignals&) = delete;
  HeldSignals& operator=(const HeldSignals&) = delete;

  // Discards the signals that arrived since construction. Signals that were pending before are not
  // ours and stay pending.
  void drop() {
    sigset_t pending;
    if (sigpending(&pending) != 0) return;
    for (const int signal : kSignals) {
      if (sigismember(&pending, signal) != 1 || sigismember(&_formerlyPending, signal) == 1)
        continue;
      sigset_t one;
      sigemptyset(&one);
      sigaddset(&one, signal);
      int taken = 0;
      sigwait(&one, &taken);
    }
  }

 private:
  sigset_t _set;
  sigset_t _formerlyPending;
  sigset_t _formerMask;
};

ssize_t writeUninterrupted(int descriptor, std::string_view bytes) {
  ssize_t written = 0;
  do {
    written = ::write(descriptor, bytes.data(), bytes.size());
  } while (written < 0 && errno == EINTR);
  return written;
}

}  // namespace

ssize_t quietWrite(int descriptor, std::string_view bytes) noexcept {
  HeldSignals signals;
  const ssize_t written = writeUninterrupted(descriptor, bytes);
  const int error = errno;
  // A complete write raises no signal.
  if (written != static_cast<ssize_t>(bytes.size())) signals.drop();
  errno = error;
  return written;
}

}  // namespace marlune
