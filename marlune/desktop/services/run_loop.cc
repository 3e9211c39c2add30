#include "marlune/desktop/services/run_loop.h"

#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <limits>

#include "marlune/platform/open_file.h"

namespace marlune {
namespace {

// Practically forever, and far from overflowing a time point.
constexpr double kLongestWaitSeconds = 1e9;

std::chrono::steady_clock::duration durationOf(double seconds) {
  if (!(seconds > 0)) seconds = 0;  // NaN counts as no delay
  return std::chrono::duration_cast<std::chrono::steady_clock::duration>(
      std::chrono::duration<double>(std::min(seconds, kLongestWaitSeconds)));
}

}  // namespace

RunLoop::RunLoop() = default;

RunLoop::~RunLoop() {
  if (_isInChild()) return;
  end();
  {
    Lock lock(_mutex);
    _waitsLeft.wait(lock, [this] { return _waits == 0; });
  }
  if (_timer >= 0) close(_timer);
}

// A child has none of the parent's other threads, and one of them may have held the lock.
bool RunLoop::_isInChild() const { return ::getpid() != _process; }

bool RunLoop::isCurrent() const { return std::this_thread::get_id() == _thread && !_isInChild(); }

bool RunLoop::runAndWait(const std::function<void()>& work) {
  if (_isInChild()) return false;
  if (isCurrent()) {
    work();
    return true;
  }
  Wait wait{.work = work, .caller = std::this_thread::get_id(), .error = {}, .changed = {}};
  {
    Lock lock(_mutex);
    if (_hasEnded || _refused.contains(wait.caller)) return false;
    _enqueue(0, {.work = {}, .wait = &wait});
    ++_waits;
    wait.changed.wait(lock, [&wait] {
      return wait.state == Wait::State::done || wait.state == Wait::State::givenUp;
    });
    if (--_waits == 0) _waitsLeft.notify_all();
  }
  if (wait.error) std::rethrow_exception(wait.error);
  return wait.state == Wait::State::done;
}

void RunLoop::postAfter(double seconds, std::function<void()> work) {
  if (_isInChild()) return;
  const Lock lock(_mutex);
  if (!_hasEnded) _enqueue(seconds, {.work = std::move(work), .wait = nullptr});
}

void RunLoop::_enqueue(double seconds, Entry entry) {
  const Turn turn(Clock::now() + durationOf(seconds), _posted++);
  const auto place = _entries.emplace(turn, std::move(entry)).first;
  if (place != _entries.begin()) return;
  _armTimer();
  _wake.notify_all();
}

std::size_t RunLoop::runPending() {
  if (_isInChild()) return 0;
  Turn limit;
  {
    const Lock lock(_mutex);
    limit = Turn(Clock::now(), _posted);
  }
  std::size_t count = 0;
  while (_runNext(limit)) ++count;
  return count;
}

bool RunLoop::_runNext(const Turn& limit) {
  Lock lock(_mutex);
  if (_entries.empty() || !(_entries.begin()->first < limit)) return false;
  const Entry entry = std::move(_entries.begin()->second);
  _entries.erase(_entries.begin());
  _armTimer();
  if (entry.wait) {
    _runWaited(lock, *entry.wait);
  } else {
    lock.unlock();
    entry.work();
  }
  return true;
}

void RunLoop::_runWaited(Lock& lock, Wait& wait) {
  wait.state = Wait::State::running;
  lock.unlock();
  std::exception_ptr error;
  try {
    wait.work();
  } catch (...) {
    error = std::current_exception();
  }
  lock.lock();
  wait.error = std::move(error);
  wait.state = Wait::State::done;
  wait.changed.notify_one();  // under the lock: the waiting thread destroys `wait` when it returns
}

bool RunLoop::_isDue() const {
  return !_entries.empty() && _entries.begin()->first.first <= Clock::now();
}

std::optional<double> RunLoop::secondsUntilNext() const {
  if (_isInChild()) return std::nullopt;
  const Lock lock(_mutex);
  if (_entries.empty()) return std::nullopt;
  const std::chrono::duration<double> left = _entries.begin()->first.first - Clock::now();
  return std::max(left.count(), 0.0);
}

bool RunLoop::waitFor(double seconds) {
  if (_isInChild()) return false;
  Lock lock(_mutex);
  const auto deadline = Clock::now() + durationOf(seconds);
  while (!_isDue() && !_isStopped && !_hasEnded && Clock::now() < deadline) {
    const auto next = _entries.empty() ? deadline : _entries.begin()->first.first;
    _wake.wait_until(lock, std::min(next, deadline));
  }
  return _isDue();
}

void RunLoop::run() {
  while (!_takeStop()) {
    const Turn now(Clock::now(), std::numeric_limits<std::uint64_t>::max());
    if (!_runNext(now)) waitFor(kLongestWaitSeconds);
  }
}

bool RunLoop::_takeStop() {
  if (_isInChild()) return true;
  const Lock lock(_mutex);
  return std::exchange(_isStopped, false) || _hasEnded;
}

void RunLoop::stop() {
  if (_isInChild()) return;
  const Lock lock(_mutex);
  _isStopped = true;
  _wake.notify_all();
}

void RunLoop::end() {
  if (_isInChild()) return;
  std::map<Turn, Entry> dropped;  // destroyed after unlocking: captures may call back
  const Lock lock(_mutex);
  _hasEnded = true;
  dropped.swap(_entries);
  for (auto& [turn, entry] : dropped) {
    if (entry.wait) _giveUp(*entry.wait);
  }
  _armTimer();
  _wake.notify_all();
}

void RunLoop::_giveUp(Wait& wait) {
  wait.state = Wait::State::givenUp;
  wait.changed.notify_one();
}

int RunLoop::fileDescriptor() {
  if (_isInChild()) return -1;
  const Lock lock(_mutex);
  if (_timer < 0) {
    _timer = aboveStandardStreams(timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC));
    _armTimer();
  }
  return _timer;
}

// The timer's descriptor becomes readable when the first turn is due and stays so until the timer
// is set again, so it is the only descriptor to poll. Work that is already due sets a time in the
// past.
void RunLoop::_armTimer() {
  const auto first = _entries.empty() ? Clock::time_point::max() : _entries.begin()->first.first;
  if (_timer < 0 || first == _timerSet) return;
  _timerSet = first;
  itimerspec setting{};  // zero: disarmed
  if (!_entries.empty()) {
    const auto sinceStart = first.time_since_epoch();  // of the monotonic clock
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(sinceStart);
    setting.it_value.tv_sec = static_cast<time_t>(seconds.count());
    setting.it_value.tv_nsec = static_cast<long>(
        std::chrono::duration_cast<std::chrono::nanoseconds>(sinceStart - seconds).count());
  }
  timerfd_settime(_timer, TFD_TIMER_ABSTIME, &setting, nullptr);
}

RunLoop::Refusal::Refusal(RunLoop& loop, std::thread::id worker) : _loop(loop), _worker(worker) {
  _loop._refuseWaitsFrom(_worker);
}

RunLoop::Refusal::~Refusal() { _loop._acceptWaitsFrom(_worker); }

void RunLoop::_refuseWaitsFrom(std::thread::id worker) {
  if (_isInChild()) return;
  const Lock lock(_mutex);
  _refused.insert(worker);
  for (auto each = _entries.begin(); each != _entries.end();) {
    Wait* const wait = each->second.wait;
    if (!wait || wait->caller != worker) {
      ++each;
      continue;
    }
    each = _entries.erase(each);
    _giveUp(*wait);
  }
  _armTimer();
}

void RunLoop::_acceptWaitsFrom(std::thread::id worker) {
  if (_isInChild()) return;
  const Lock lock(_mutex);
  const auto refusal = _refused.find(worker);
  if (refusal != _refused.end()) _refused.erase(refusal);
}

}  // namespace marlune
