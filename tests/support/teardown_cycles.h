#ifndef MARLUNE_TESTS_SUPPORT_TEARDOWN_CYCLES_H_
#define MARLUNE_TESTS_SUPPORT_TEARDOWN_CYCLES_H_

#include <cstdint>
#include <random>
#include <thread>

#include "marlune/desktop/services/run_loop.h"

namespace marlune {

// What a queue engine asks of the main thread, boiled down: a worker that notifies and waits, and
// an owner that takes it down from the main thread whatever is under way.
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

  std::uint64_t ran() const { return _ran; }            // notifications run; main thread
  std::uint64_t answered() const { return _answered; }  // waits that returned true; after join

 private:
  RunLoop& _loop;
  std::uint64_t _ran = 0;
  std::uint64_t _answered = 0;
  std::thread _thread;
};

struct TeardownCounts {
  std::uint64_t cycles = 0;         // that ended
  std::uint64_t notifications = 0;  // that ran
  std::uint64_t wrongAnswers = 0;   // cycles in which waits said other than what ran
  std::uint64_t left = 0;           // pieces of work in the loop after a teardown
};

// Makes and takes down `cycles` workers, at another moment of the notification every time.
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
