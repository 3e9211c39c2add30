#ifndef MARLUNE_DESKTOP_AUDIO_PATIENT_THREAD_H_
#define MARLUNE_DESKTOP_AUDIO_PATIENT_THREAD_H_

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

namespace marlune {

// A thread that does what may take for ever, one thing after the other, so that whoever asks for
// it need not: opening and closing a device hang while the sound server does. Lives as long as the
// process does.
class PatientThread {
 public:
  PatientThread();

  // Does `work` after all that was asked before, and waits for it at most `seconds`. Whether it is
  // done; if not, it still will be, so `work` must own what it uses.
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
