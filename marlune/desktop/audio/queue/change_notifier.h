#ifndef MARLUNE_DESKTOP_AUDIO_QUEUE_CHANGE_NOTIFIER_H_
#define MARLUNE_DESKTOP_AUDIO_QUEUE_CHANGE_NOTIFIER_H_

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "marlune/playback/queue_player.h"

namespace marlune {

// Calls a queue's observers on its own thread, because an observer may wait for the main thread. No
// lock is held during the call, but a share of the queue is.
//
// Threads: any, unless stated otherwise.
class ChangeNotifier : public std::enable_shared_from_this<ChangeNotifier> {
 public:
  // Sets the queue whose changes are reported, once, before anything else. The queue is not kept
  // alive.
  void setOwner(std::weak_ptr<QueuePlayer> owner);

  // See QueuePlayer. An initial value is delivered immediately on the calling thread.
  void addObserver(QueuePlayerObserver* observer, std::string_view keyPath, unsigned options);
  void removeObserver(QueuePlayerObserver* observer, std::string_view keyPath);

  // Schedules a call of the observers of `keyPath`, without waiting. Changes of the same key path
  // are merged until they are delivered. `keyPath` must outlive the notifier.
  void post(std::string_view keyPath);

  // Whether every change has been delivered.
  bool isIdle() const;
  // Returns after every change has been delivered, or after stop().
  void waitUntilIdle() const;

  // Ends the thread and drops pending changes. Call nothing afterwards.
  void stop();

 private:
  using Lock = std::unique_lock<std::mutex>;
  struct Observation {
    QueuePlayerObserver* observer;
    std::string keyPath;
    unsigned options;
    bool operator==(const Observation&) const = default;
  };

  void _run();
  void _deliver(Lock& lock, std::string_view keyPath);

  mutable std::mutex _mutex;  // guards all below
  mutable std::condition_variable _changed;
  std::thread _thread;  // started by the first change
  std::weak_ptr<QueuePlayer> _owner;
  std::vector<Observation> _observations;
  std::deque<std::string_view> _pending;
  bool _isDelivering = false;
  bool _isStopping = false;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_QUEUE_CHANGE_NOTIFIER_H_
