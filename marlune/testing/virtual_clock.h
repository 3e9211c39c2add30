#ifndef MARLUNE_TESTING_VIRTUAL_CLOCK_H_
#define MARLUNE_TESTING_VIRTUAL_CLOCK_H_

#include <algorithm>
#include <functional>
#include <map>
#include <mutex>
#include <utility>

#include "marlune/platform/clock.h"

namespace marlune {

// Time that passes only when the test says so, and the work that is due at its moments.
//
// Threads: any; advance() and sleep() on one thread, on which the work runs.
class VirtualClock : public Clock {
 public:
  // What goes on by itself while the device is awake, and stands still while it sleeps: sound. A
  // timer, on the other hand, is due by the clock, and runs at once after a sleep.
  enum class Kind { timer, sound };

  double now() const override {
    const std::lock_guard lock(_mutex);
    return _now;
  }

  // The time without sleeps.
  double awake() const {
    const std::lock_guard lock(_mutex);
    return _now - _slept;
  }

  // Runs `work` once after `seconds`. Work of the same moment runs in the order of the calls.
  void after(double seconds, std::function<void()> work, Kind kind = Kind::timer) {
    const std::lock_guard lock(_mutex);
    _work.emplace(_now + seconds, Work{kind, std::move(work)});
  }

  // Runs the work due within the next `seconds`, including work that it adds.
  void advance(double seconds) {
    const double until = now() + seconds;
    while (auto work = _takeNext(until)) work();
    const std::lock_guard lock(_mutex);
    _now = until;
  }

  // The device sleeps, and runs the timers that are due when it wakes up.
  void sleep(double seconds) {
    {
      const std::lock_guard lock(_mutex);
      std::multimap<double, Work> work;
      for (auto& [due, each] : _work) {
        work.emplace(each.kind == Kind::sound ? due + seconds : due, std::move(each));
      }
      _work = std::move(work);
      _now += seconds;
      _slept += seconds;
    }
    advance(0);
  }

 private:
  struct Work {
    Kind kind;
    std::function<void()> run;
  };

  std::function<void()> _takeNext(double until) {
    const std::lock_guard lock(_mutex);
    if (_work.empty() || _work.begin()->first > until) return nullptr;
    _now = std::max(_now, _work.begin()->first);
    return std::move(_work.extract(_work.begin()).mapped().run);
  }

  mutable std::mutex _mutex;
  double _now = 0;
  double _slept = 0;
  std::multimap<double, Work> _work;  // by due time
};

}  // namespace marlune

#endif  // MARLUNE_TESTING_VIRTUAL_CLOCK_H_
