#include "marlune/desktop/audio/device/patient_thread.h"

#include <chrono>
#include <cstdlib>
#include <future>
#include <thread>
#include <utility>

namespace marlune {

PatientThread::PatientThread() { std::thread(&_run, _state).detach(); }

PatientThread& PatientThread::forDevices() {
  static PatientThread* const thread = [] {
    // Do not exit during a close: the device libraries' own exit handlers would free what it uses.
    std::atexit([] { forDevices().waitUntilIdle(1); });
    return new PatientThread;
  }();
  return *thread;
}

bool PatientThread::runWithin(double seconds, std::function<void()> work) {
  const auto done = std::make_shared<std::promise<void>>();
  std::future<void> whenDone = done->get_future();
  {
    const std::lock_guard lock(_state->mutex);
    _state->work.push_back([done, work = std::move(work)] {
      work();
      done->set_value();
    });
  }
  _state->changed.notify_one();
  return whenDone.wait_for(std::chrono::duration<double>(seconds)) == std::future_status::ready;
}

void PatientThread::_run(const std::shared_ptr<State>& state) {
  for (;;) {
    std::unique_lock lock(state->mutex);
    state->changed.wait(lock, [&] { return !state->work.empty(); });
    const std::function<void()> work = std::move(state->work.front());
    state->work.pop_front();
    lock.unlock();
    work();
  }
}

}  // namespace marlune
