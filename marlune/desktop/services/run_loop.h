#ifndef MARLUNE_DESKTOP_SERVICES_RUN_LOOP_H_
#define MARLUNE_DESKTOP_SERVICES_RUN_LOOP_H_

#include <sys/types.h>
#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <exception>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <thread>
#include <utility>

#include "marlune/platform/main_thread.h"

namespace marlune {

// The main thread of a program without one of its own: the thread that makes the loop. It runs
// what is posted while it is in run(), or whenever an app with a loop of its own calls
// runPending(). Such an app either polls fileDescriptor() beside its other descriptors or asks
// secondsUntilNext() how long it may sleep.
//
// Work that throws: what runAndWait was given throws in the thread that waits; what was posted
// throws out of runPending() or run(), and the work behind it stays in the loop.
//
// In a child that fork() made, the loop has ended: nothing runs, and no thread is the main thread.
//
// Threads: any, at any time, except what is marked "main thread". No lock is held while work runs.
class RunLoop : public MainThread {
 public:
  RunLoop();
  ~RunLoop() override;  // ends the loop and waits until no thread is inside runAndWait. Main thread
  RunLoop(const RunLoop&) = delete;
  RunLoop& operator=(const RunLoop&) = delete;

  bool isCurrent() const override;  // false in a child
  bool runAndWait(const std::function<void()>& work) override;
  void post(std::function<void()> work) override { postAfter(0, std::move(work)); }
  void postAfter(double seconds, std::function<void()> work) override;

  // Runs what is due now, in order, and returns how many that was. What it posts meanwhile waits
  // for the next call. Main thread.
  std::size_t runPending();

  // How long until there is something to run: 0 when there is now, nothing when no work is left.
  std::optional<double> secondsUntilNext() const;

  // Sleeps until there is something to run, stop() was called or `seconds` have passed. Whether
  // there is something to run. Main thread.
  bool waitFor(double seconds);

  // Runs work as it comes until stop(), which may come from the work itself, from any thread, or
  // before. One stop ends one run. Main thread.
  void run();
  void stop();

  // Ends the loop for good: pending work is dropped, waiting threads are released with false, and
  // so is all later work, except that runAndWait on the main thread still runs at once.
  void end();

  // Readable (poll, epoll, select) while there is something to run. Owned by the loop, not to be
  // read from. Made at the first call; -1 when the system refuses. Main thread.
  int fileDescriptor();

  // While this stands, no work of `worker` is waited for: what it waits for now is given up
  // without running, and what it would wait for later is refused at once (runAndWait returns
  // false). This is how the owner of a worker that waits for the main thread joins it from the
  // main thread; both are decided under the lock under which work is taken to be run, so there is
  // no moment in between.
  //
  //     const RunLoop::Refusal refusal(loop, worker.get_id());
  //     worker.join();
  //
  // It must end after the join and before the system gives the id to another thread that matters.
  // Work of the worker that is running already cannot be given up, so it must not be what joins.
  class Refusal {
   public:
    Refusal(RunLoop& loop, std::thread::id worker);
    ~Refusal();
    Refusal(const Refusal&) = delete;
    Refusal& operator=(const Refusal&) = delete;

   private:
    RunLoop& _loop;
    const std::thread::id _worker;
  };

 private:
  using Clock = std::chrono::steady_clock;
  using Lock = std::unique_lock<std::mutex>;

  // A thread inside runAndWait; lives on its stack.
  struct Wait {
    enum class State { pending, running, done, givenUp };
    const std::function<void()>& work;
    const std::thread::id caller;
    State state = State::pending;
    std::exception_ptr error;
    std::condition_variable changed;
  };
  // Work to be run: either its own or that of a waiting thread.
  struct Entry {
    std::function<void()> work;
    Wait* wait = nullptr;
  };
  // When it is due, and the place in the order of posting.
  using Turn = std::pair<Clock::time_point, std::uint64_t>;

  bool _isInChild() const;

  // These five with the lock held.
  void _enqueue(double seconds, Entry entry);
  bool _isDue() const;
  void _giveUp(Wait& wait);
  void _armTimer();
  void _runWaited(Lock& lock, Wait& wait);

  bool _runNext(const Turn& limit);  // what is first, if its turn is before `limit`
  bool _takeStop();
  void _refuseWaitsFrom(std::thread::id worker);
  void _acceptWaitsFrom(std::thread::id worker);

  const pid_t _process = ::getpid();
  const std::thread::id _thread = std::this_thread::get_id();
  mutable std::mutex _mutex;  // for all below
  std::condition_variable _wake;
  std::condition_variable _waitsLeft;
  std::map<Turn, Entry> _entries;
  std::uint64_t _posted = 0;
  std::multiset<std::thread::id> _refused;
  std::size_t _waits = 0;
  bool _isStopped = false;
  bool _hasEnded = false;
  int _timer = -1;
  Clock::time_point _timerSet = Clock::time_point::max();
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_SERVICES_RUN_LOOP_H_
