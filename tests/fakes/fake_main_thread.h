#ifndef MARLUNE_TESTS_FAKES_FAKE_MAIN_THREAD_H_
#define MARLUNE_TESTS_FAKES_FAKE_MAIN_THREAD_H_

#include <functional>
#include <future>
#include <map>
#include <mutex>
#include <thread>
#include <utility>

#include "marlune/platform/main_thread.h"

namespace marlune {

// The thread that creates the object, with a clock that advances only when the test calls
// `advance`.
class FakeMainThread : public MainThread {
 public:
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
    const std::lock_guard lock(_mutex);
    _work.emplace(_now + seconds, std::move(work));
  }

  // Runs the work due within the next `seconds`, including work that it posts.
  void advance(double seconds) {
    const double until = _now + seconds;
    while (auto work = _takeNext(until)) work();
    const std::lock_guard lock(_mutex);
    _now = until;
  }
  void runPending() { advance(0); }

 private:
  std::function<void()> _takeNext(double until) {
    const std::lock_guard lock(_mutex);
    if (_work.empty() || _work.begin()->first > until) return nullptr;
    _now = _work.begin()->first;
    return std::move(_work.extract(_work.begin()).mapped());
  }

  const std::thread::id _thread = std::this_thread::get_id();
  std::mutex _mutex;
  double _now = 0;
  std::multimap<double, std::function<void()>> _work;  // by due time
};

}  // namespace marlune

#endif  // MARLUNE_TESTS_FAKES_FAKE_MAIN_THREAD_H_
