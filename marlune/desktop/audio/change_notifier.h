#ifndef MARLUNE_DESKTOP_AUDIO_CHANGE_NOTIFIER_H_
#define MARLUNE_DESKTOP_AUDIO_CHANGE_NOTIFIER_H_

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

// Delivers a queue's changes to its observers on a thread of its own, since an observer may wait
// for the main thread. No lock is held meanwhile, but a share of the queue is.
//
// Any thread may call what is not marked otherwise.
class ChangeNotifier : public std::enable_shared_from_this<ChangeNotifier> {
 public:
  // The queue that the changes are of; once, before anything else. It is not kept alive.
  void setOwner(std::weak_ptr<QueuePlayer> owner);

  // See QueuePlayer. An initial value is delivered at once, on the calling thread.
  void addObserver(QueuePlayerObserver* observer, std::string_view keyPath, unsigned options);
  void removeObserver(QueuePlayerObserver* observer, std::string_view keyPath);

  // Has the observers of `keyPath` called soon, and never waits. A change that is not delivered
  // yet covers later ones of the same key path. `keyPath` must outlive the notifier.
  void post(std::string_view keyPath);

  // Whether every change has been delivered.
  bool isIdle() const;
  // Returns when every change has been delivered, or after stop().
  void waitUntilIdle() const;

  // Ends the thread: pending changes are dropped. The last call.
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

  mutable std::mutex _mutex;  // for all below
  mutable std::condition_variable _changed;
  std::thread _thread;  // runs from the first change on
  std::weak_ptr<QueuePlayer> _owner;
  std::vector<Observation> _observations;
  std::deque<std::string_view> _pending;
  bool _isDelivering = false;
  bool _isStopping = false;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_CHANGE_NOTIFIER_H_
