#ifndef MARLUNE_DESKTOP_AUDIO_DEVICE_PATIENT_THREAD_H_
#define MARLUNE_DESKTOP_AUDIO_DEVICE_PATIENT_THREAD_H_

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

namespace marlune {

// Runs potentially blocking calls on its own thread, one after another, so that callers can time
// out: opening and closing a device block while the sound server hangs. The thread lives as long as
// the process.
class PatientThread {
 public:
  PatientThread();

  // The thread that opens and closes the process's sound devices. At exit the process waits at most
  // a second for the thread to become idle.
  static PatientThread& forDevices();

  // Queues `work` and waits for it at most `seconds`. Returns whether it has finished. If not, it
  // still runs later, so `work` must own what it uses.
  bool runWithin(double seconds, std::function<void()> work);

  // Waits at most `seconds` until no work is left.
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

#endif  // MARLUNE_DESKTOP_AUDIO_DEVICE_PATIENT_THREAD_H_
