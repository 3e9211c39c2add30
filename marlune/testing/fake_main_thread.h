#ifndef MARLUNE_TESTING_FAKE_MAIN_THREAD_H_
#define MARLUNE_TESTING_FAKE_MAIN_THREAD_H_

#include <functional>
#include <future>
#include <memory>
#include <thread>
#include <utility>

#include "marlune/platform/main_thread.h"
#include "marlune/testing/virtual_clock.h"

namespace marlune {

// The thread that creates the object. Its work runs when the test advances the clock.
class FakeMainThread : public MainThread {
 public:
  explicit FakeMainThread(std::shared_ptr<VirtualClock> clock = std::make_shared<VirtualClock>())
      : _clock(std::move(clock)) {}

  bool isCurrent() const override { return std::this_thread::get_id() == _thread; }

  bool runAndWait(const std::function<void()>& work) override {
    if (isCurrent()) return work(), true;
    std::promise<void> done;
    post([&] { work(), done.set_value(); });
    done.get_future().wait();
    return true;
  }

  void post(std::function<void()> work) override { postAfter(0, std::move(work)); }

  void postAfter(double seconds, std::function<void()> work) override {
    _clock->after(seconds, std::move(work));
  }

  // Runs the work due within the next `seconds`, including work that it posts.
  void advance(double seconds) { _clock->advance(seconds); }
  void runPending() { advance(0); }

 private:
  const std::shared_ptr<VirtualClock> _clock;
  const std::thread::id _thread = std::this_thread::get_id();
};

}  // namespace marlune

#endif  // MARLUNE_TESTING_FAKE_MAIN_THREAD_H_
