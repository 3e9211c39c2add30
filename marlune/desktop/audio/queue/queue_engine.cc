#include "marlune/desktop/audio/queue/queue_engine.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "marlune/desktop/audio/queue/end_thread.h"
#include "marlune/util/tq_utils.h"

namespace marlune {

// Items can be inserted before other items only until the first of those is being sent to the
// output: once the queue has played, sent blocks are not recalled.
bool QueueEngine::canInsert(const PlayerItem* item, const PlayerItem* after) const {
  const auto* file = dynamic_cast<const FilePlayerItem*>(item);
  if (!file || file->isQueued()) return false;
  const Lock lock(_mutex);
  if (_status == QueuePlayer::Status::failed) return false;
  const std::size_t position = _positionAfter(after);
  return position == _items.size() ||
         (position < _items.size() && (position > _sentItems || !_hasPlayed));
}

// Past the end if `after` is not in the queue.
std::size_t QueueEngine::_positionAfter(const PlayerItem* after) const {
  if (!after) return _items.size();
  const auto place = std::find_if(_items.begin(), _items.end(),
                                  [&](const auto& each) { return each.get() == after; });
  return static_cast<std::size_t>(place - _items.begin()) + 1;
}

void QueueEngine::insert(std::shared_ptr<PlayerItem> item, const PlayerItem* after) {
  auto file = std::dynamic_pointer_cast<FilePlayerItem>(std::move(item));
  if (!file) return;  // another item type, which canInsert rejects
  _openForFirstItem();
  file->enterQueue();
  const Lock lock(_mutex);
  if (!_hasPlayed && after) _startOver();
  // The worker may have progressed since canInsert returned true.
  const std::size_t position =
      std::min(std::max(_positionAfter(after), _sentItems + 1), _items.size());
  _items.insert(_items.begin() + static_cast<long>(position), std::move(file));
  _setItemsChanged(/*isCurrentItemOther=*/_items.size() == 1);
  ++_orders;
  _requestWork();
}

// The session may be deactivated while the queue runs empty, and a later item does not reactivate
// it. Open the output here, before the worker finds it closed.
void QueueEngine::_openForFirstItem() {
  {
    const Lock lock(_mutex);
    if (_rate == 0 || !_items.empty()) return;
  }
  _route->reopen();
}

float QueueEngine::rate() const {
  const Lock lock(_mutex);
  return _rate;
}

void QueueEngine::setRate(float rate) {
  if (!std::isfinite(rate)) rate = 0;
  if (rate != 0) _route->enter(*this);
  const Lock lock(_mutex);
  if (_status == QueuePlayer::Status::failed) return;
  ++_orders;
  _rate = rate;
  _hasPlayed |= rate != 0;
  _line.setRunning(rate != 0);
  _requestWork();
}

void QueueEngine::removeAllItems() {
  const Lock lock(_mutex);
  _dropAllItems(ItemFate::dropped("it was removed from the queue"));
  ++_orders;
  _requestWork();
}

void QueueEngine::_dropAllItems(const ItemFate& fate) {
  const bool hadItems = !_items.empty();
  for (const auto& item : _items) item->leaveQueue(fate);
  _items.clear();
  _hasPlayed = _rate != 0;
  _startOver();
  _setItemsChanged(/*isCurrentItemOther=*/hadItems);
}

// Discards what was sent. Items still in the queue are decoded again.
void QueueEngine::_startOver() {
  _sentItems = 0;
  _line.setOwed(_items.size());
  _line.setGeneration(++_generation);
}

void QueueEngine::_setItemsChanged(bool isCurrentItemOther) {
  _line.setOwed(_items.size() - _sentItems);
  if (isCurrentItemOther) _setChanged(QueuePlayer::kCurrentItemKeyPath);
}

// Changes of the same key path are merged until they are passed to the notifier.
void QueueEngine::_setChanged(std::string_view keyPath) {
  if (std::find(_changes.begin(), _changes.end(), keyPath) != _changes.end()) return;
  if (_changes.empty()) _firstChange = Clock::now();
  _changes.push_back(keyPath);
}

std::vector<std::shared_ptr<PlayerItem>> QueueEngine::items() const {
  const Lock lock(_mutex);
  return {_items.begin(), _items.end()};
}

QueuePlayer::Status QueueEngine::status() const {
  const Lock lock(_mutex);
  return _status;
}

bool QueueEngine::isSounding() const {
  const Lock lock(_mutex);
  return _isSounding();
}

void QueueEngine::rendered() {
  const Lock lock(_mutex);
  _requestWork();
}

// A worker that has a request is awake or about to wake.
void QueueEngine::_requestWork() {
  if (std::exchange(_hasRequest, true) || _isStopping) return;
  if (!_worker.joinable()) {
    _worker = std::thread([self = shared_from_this()] { self->_run(); });
  }
  _wake.notify_one();
}

void QueueEngine::waitUntilSettled() {
  Lock lock(_mutex);
  if (!_worker.joinable()) return;
  for (;;) {
    _settled.wait(lock, [this] { return (_isSettled && !_hasRequest) || _isStopping; });
    if (_isStopping || _notifier->isIdle()) return;
    lock.unlock();
    _notifier->waitUntilIdle();  // and check whether observers have caused new work
    lock.lock();
  }
}

void QueueEngine::stop() {
  _route->leave(*this);
  std::size_t dropped = 0;
  {
    const Lock lock(_mutex);
    _isStopping = true;
    dropped = _items.size();
    // The worker may be inside a step.
    _dropAllItems(ItemFate::dropped("its queue has ended"));
    _wake.notify_one();
    _settled.notify_all();
  }
  if (dropped > 0) {
    TQUtils::log("A queue of sound files has ended: %lu of them were dropped.", dropped);
  }
  endThread(_worker);
  _notifier->stop();
}

}  // namespace marlune
