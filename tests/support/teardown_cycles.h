#ifndef MARLUNE_TESTS_SUPPORT_TEARDOWN_CYCLES_H_
#define MARLUNE_TESTS_SUPPORT_TEARDOWN_CYCLES_H_

#include <cstdint>
#include <random>
#include <thread>

#include "marlune/desktop/services/run_loop.h"

namespace marlune {

// The smallest model of a queue engine and the main thread: a worker that notifies and waits, and
// an owner that tears it down from the main thread at any time.
class NotifyingWorker {
 public:
  explicit NotifyingWorker(RunLoop& loop)
      : _loop(loop), _thread([this] {
          while (_loop.runAndWait([this] { ++_ran; })) ++_answered;
        }) {}
  ~NotifyingWorker() {
    if (_thread.joinable()) join();
  }

  void join() {
    const RunLoop::Refusal refusal(_loop, _thread.get_id());
    _thread.join();
  }

  std::uint64_t ran() const { return _ran; }            // notifications that ran; main thread
  std::uint64_t answered() const { return _answered; }  // waits that returned true; after join

 private:
  RunLoop& _loop;
  std::uint64_t _ran = 0;
  std::uint64_t _answered = 0;
  std::thread _thread;
};

struct TeardownCounts {
  std::uint64_t cycles = 0;         // completed
  std::uint64_t notifications = 0;  // that ran
  std::uint64_t wrongAnswers = 0;   // cycles in which the waits' results differ from what ran
  std::uint64_t left = 0;           // work left in the loop after a teardown
};

// Creates and tears down `cycles` workers, each at a different moment of the notification.
inline TeardownCounts runTeardownCycles(std::uint64_t cycles, std::uint32_t seed) {
  RunLoop loop;
  std::mt19937 random(seed);
  TeardownCounts counts;
  for (; counts.cycles < cycles; ++counts.cycles) {
    NotifyingWorker worker(loop);
    for (auto pumps = random() % 4; pumps > 0; --pumps) {
      if (random() % 2 == 0) loop.waitFor(0.001);
      loop.runPending();
    }
    for (auto spins = random() % 400; spins > 0; --spins) std::this_thread::yield();
    worker.join();
    counts.notifications += worker.ran();
    if (worker.ran() != worker.answered()) ++counts.wrongAnswers;
    counts.left += loop.runPending();
  }
  return counts;
}

}  // namespace marlune

#endif  // MARLUNE_TESTS_SUPPORT_TEARDOWN_CYCLES_H_
