#include "marlune/desktop/audio/queue/change_notifier.h"

#include <algorithm>
#include <utility>

#include "marlune/desktop/audio/queue/end_thread.h"

namespace marlune {

void ChangeNotifier::setOwner(std::weak_ptr<QueuePlayer> owner) {
  const Lock lock(_mutex);
  _owner = std::move(owner);
}

void ChangeNotifier::addObserver(QueuePlayerObserver* observer, std::string_view keyPath,
                                 unsigned options) {
  std::shared_ptr<QueuePlayer> owner;
  {
    const Lock lock(_mutex);
    _observations.push_back({observer, std::string(keyPath), options});
    owner = _owner.lock();
  }
  if (options & QueuePlayer::kInitialValue) observer->observeValueForKeyPath(keyPath, owner);
}

void ChangeNotifier::removeObserver(QueuePlayerObserver* observer, std::string_view keyPath) {
  const Lock lock(_mutex);
  std::erase_if(_observations, [&](const Observation& each) {
    return each.observer == observer && each.keyPath == keyPath;
  });
}

void ChangeNotifier::post(std::string_view keyPath) {
  const Lock lock(_mutex);
  if (_isStopping) return;
  if (std::find(_pending.begin(), _pending.end(), keyPath) != _pending.end()) return;
  _pending.push_back(keyPath);
  if (!_thread.joinable()) _thread = std::thread([self = shared_from_this()] { self->_run(); });
  _changed.notify_all();
}

bool ChangeNotifier::isIdle() const {
  const Lock lock(_mutex);
  return _pending.empty() && !_isDelivering;
}

void ChangeNotifier::waitUntilIdle() const {
  Lock lock(_mutex);
  _changed.wait(lock, [this] { return (_pending.empty() && !_isDelivering) || _isStopping; });
}

void ChangeNotifier::stop() {
  {
    const Lock lock(_mutex);
    _isStopping = true;
    _changed.notify_all();
  }
  // No observer is being called: its caller holds a share of the queue, and the last share is
  // released here.
  endThread(_thread);
}

void ChangeNotifier::_run() {
  Lock lock(_mutex);
  while (!_isStopping) {
    if (_pending.empty()) {
      _changed.wait(lock);
      continue;
    }
    const std::string_view keyPath = _pending.front();
    _pending.pop_front();
    _isDelivering = true;
    _deliver(lock, keyPath);
    _isDelivering = false;
    _changed.notify_all();
  }
}

void ChangeNotifier::_deliver(Lock& lock, std::string_view keyPath) {
  const std::vector<Observation> observations = _observations;
  for (const Observation& each : observations) {
    const bool isMeant = each.keyPath == keyPath && (each.options & QueuePlayer::kNewValue);
    const auto place = std::find(_observations.begin(), _observations.end(), each);
    if (!isMeant || place == _observations.end()) continue;  // removed by an earlier observer
    std::shared_ptr<QueuePlayer> owner = _owner.lock();
    if (!owner || _isStopping) return;
    lock.unlock();
    each.observer->observeValueForKeyPath(keyPath, owner);
    owner.reset();  // unlocked: it may be the last share
    lock.lock();
  }
}

}  // namespace marlune
