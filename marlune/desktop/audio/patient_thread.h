#ifndef MARLUNE_DESKTOP_AUDIO_PATIENT_THREAD_H_
#define MARLUNE_DESKTOP_AUDIO_PATIENT_THREAD_H_

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

namespace marlune {

// Runs potentially blocking calls on its own thread, one after the other, so that callers can time
// out: opening and closing a device hang while the sound server does. The thread lives as long as
// the process.
class PatientThread {
 public:
  PatientThread();

  // The thread that opens and closes the process's sound devices. At its end the process waits
  // until the thread is idle, at most a second.
  static PatientThread& forDevices();

  // Does `work` after all that was asked before, and waits for it at most `seconds`. Returns
  // whether it is done; if not, it still will be, so `work` must own what it uses.
  bool runWithin(double seconds, std::function<void()> work);

  // Waits until nothing is left to do, at most `seconds`.
  bool waitUntilIdle(double seconds) {
    return runWithin(seconds, [] {});
  }

 private:
  // Shared with the thread, which cannot be joined while it hangs.
  struct State {
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::function<void()>> work;
  };
  static void _run(const std::shared_ptr<State>& state);

  const std::shared_ptr<State> _state = std::make_shared<State>();
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_PATIENT_THREAD_H_
