#include "marlune/platform/quiet_write.h"

#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>

namespace marlune {

namespace {

bool isPending(int signal) {
  sigset_t pending;
  sigemptyset(&pending);
  return sigpending(&pending) == 0 && sigismember(&pending, signal) == 1;
}

// Holds one signal back from the calling thread. At its end an instance that arrived meanwhile is
// gone; one that was pending before stays, it is somebody else's.
class HeldSignal {
 public:
  explicit HeldSignal(int signal) : _signal(signal), _wasPending(isPending(signal)) {
    sigemptyset(&_set);
    sigaddset(&_set, signal);
    pthread_sigmask(SIG_BLOCK, &_set, &_formerMask);
  }
  ~HeldSignal() {
    int taken = 0;
    if (!_wasPending && isPending(_signal)) sigwait(&_set, &taken);
    pthread_sigmask(SIG_SETMASK, &_formerMask, nullptr);
  }
  HeldSignal(const HeldSignal&) = delete;
  HeldSignal& operator=(const HeldSignal&) = delete;

 private:
  const int _signal;
  const bool _wasPending;
  sigset_t _set;
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
  ssize_t written = 0;
  int error = 0;
  {
    const HeldSignal pipe(SIGPIPE);
    const HeldSignal fileSize(SIGXFSZ);
    written = writeUninterrupted(descriptor, bytes);
    error = errno;
  }
  errno = error;
  return written;
}

}  // namespace marlune
