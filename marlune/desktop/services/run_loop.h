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
#include "marlune/platform/visibility.h"

namespace marlune {

// The main thread for a program that has none of its own: the thread that creates the loop. Posted
// work runs inside run(), or when an app with its own loop calls runPending(). Such an app either
// polls fileDescriptor() with its other descriptors, or sleeps for at most secondsUntilNext().
//
// Exceptions: work passed to runAndWait throws in the waiting thread. Posted work throws out of
// runPending() or run(); the work after it stays in the loop.
//
// In a child created by fork() the loop has ended: nothing runs, and no thread is the main thread.
//
// Threads: any, at any time, except where "main thread" is stated. No lock is held while work runs.
class MARLUNE_API RunLoop : public MainThread {
 public:
  RunLoop();
  ~RunLoop() override;  // ends the loop and waits until no thread is inside runAndWait. Main thread
  RunLoop(const RunLoop&) = delete;
  RunLoop& operator=(const RunLoop&) = delete;

  bool isCurrent() const override;  // false in a child
  bool runAndWait(const std::function<void()>& work) override;
  void post(std::function<void()> work) override { postAfter(0, std::move(work)); }
  void postAfter(double seconds, std::function<void()> work) override;

  // Runs the work that is due, in order, and returns its number. Work posted in the meantime waits
  // for the next call. Main thread.
  std::size_t runPending();

  // Seconds until there is work to run: 0 if there is some now, nothing if no work is left.
  std::optional<double> secondsUntilNext() const;

  // Sleeps until there is work to run, stop() is called or `seconds` have passed. Returns whether
  // there is work to run. Main thread.
  bool waitFor(double seconds);

  // Runs work as it arrives until stop() is called, by the work itself, by any thread, or
  // beforehand. One stop ends one run. Main thread.
  void run();
  void stop();

  // Ends the loop permanently. Pending and later work is dropped, and threads that wait for work
  // get false; only runAndWait on the main thread still runs its work at once.
  void end();

  // Readable (poll, epoll, select) while there is work to run. Owned by the loop; do not read from
  // it. Created by the first call; -1 if the system refuses. Main thread.
  int fileDescriptor();

  // While one exists, `worker` cannot wait for work on the main thread: work it waits for now is
  // dropped without running, and later attempts are refused at once (runAndWait returns false). Use
  // it to join, from the main thread, a worker that waits for the main thread. Both decisions are
  // made under the lock that guards taking work, so there is no race.
  //
  //     const RunLoop::Refusal refusal(loop, worker.get_id());
  //     worker.join();
  //
  // It must end after the join and before the system can reuse the thread's id. Work of the worker
  // that is already running cannot be dropped, so that work must not be the caller of join.
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
  // Work to run: posted work, or that of a waiting thread.
  struct Entry {
    std::function<void()> work;
    Wait* wait = nullptr;
  };
  // The time it is due, and its place in the order of posting.
  using Turn = std::pair<Clock::time_point, std::uint64_t>;

  bool _isInChild() const;

  // These five require the lock.
  void _enqueue(double seconds, Entry entry);
  bool _isDue() const;
  void _giveUp(Wait& wait);
  void _armTimer();
  void _runWaited(Lock& lock, Wait& wait);

  bool _runNext(const Turn& limit);  // the first entry, if its turn is before `limit`
  bool _takeStop();
  void _refuseWaitsFrom(std::thread::id worker);
  void _acceptWaitsFrom(std::thread::id worker);

  const pid_t _process = ::getpid();
  const std::thread::id _thread = std::this_thread::get_id();
  mutable std::mutex _mutex;  // guards all below
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
