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

// Past the end if it is not in the queue.
std::size_t QueueEngine::_positionOf(const PlayerItem* item) const {
  const auto place = std::find_if(_items.begin(), _items.end(),
                                  [&](const auto& each) { return each.get() == item; });
  return static_cast<std::size_t>(place - _items.begin());
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

// Blocks that were sent stay where they are; the callback skips those of a recalled recording.
bool QueueEngine::removeUnbegun(std::span<const std::shared_ptr<PlayerItem>> items) {
  const Lock lock(_mutex);
  const std::size_t first = items.empty() ? _items.size() : _positionOf(items.front().get());
  if (first + items.size() > _items.size()) return false;
  if (!std::equal(items.begin(), items.end(), _items.begin() + static_cast<long>(first))) {
    return false;
  }
  const auto& cue = _items[first]->cue;
  if (cue && !_line.holdBack(cue->serial)) return false;
  _erase(first, first + items.size(), ItemFate::dropped("it was removed from the queue"));
  _line.allowAll();
  return true;
}

bool QueueEngine::endEarly(const PlayerItem* item, double fadeSeconds) {
  const Lock lock(_mutex);
  const std::size_t position = _positionOf(item);
  if (position == _items.size()) return false;
  FilePlayerItem& file = *_items[position];
  if (!_hasBegun(file) || file.cue->isTaken.load()) return false;
  if (_rate == 0) {
    _erase(position, position + 1, ItemFate::dropped("it was ended early"));
    return true;
  }
  const double fade = std::max(fadeSeconds, 0.0);
  const int rate = _outputRate.load();
  file.isEndedEarly = true;
  file.cue->fadeFrames.store(std::lround(fade * rate));
  if (rate > 0) {
    file.setSeconds(static_cast<double>(file.cue->takenFrames.load()) / rate + fade);
  }
  _requestWork();
  return true;
}

bool QueueEngine::_hasBegun(const FilePlayerItem& item) const {
  return item.cue && item.cue->serial <= _line.begun();
}

void QueueEngine::_erase(std::size_t first, std::size_t end, const ItemFate& fate) {
  for (std::size_t i = first; i < end; ++i) {
    if (_items[i]->cue) _items[i]->cue->isRecalled.store(true);
    _items[i]->leaveQueue(fate);
  }
  _items.erase(_items.begin() + static_cast<long>(first), _items.begin() + static_cast<long>(end));
  if (_sentItems > first) _sentItems -= std::min(_sentItems, end) - first;
  _setItemsChanged(/*isCurrentItemOther=*/first == 0);
  ++_orders;
  _requestWork();
}

std::optional<double> QueueEngine::secondsHeard() const {
  const double latency = latencySeconds();
  const Lock lock(_mutex);
  const int rate = _outputRate.load();
  if (_items.empty() || rate == 0 || !_hasBegun(*_items.front())) return 0;
  const SoundCue& cue = *_items.front()->cue;
  const auto passed = static_cast<double>(_line.framesTaken() - cue.begunAt.load());
  const auto taken = static_cast<double>(cue.takenFrames.load());
  return std::min(passed / rate - latency, taken / rate);
}

double QueueEngine::latencySeconds() const {
  const auto state = _route->stateFor(*this);
  const int rate = _outputRate.load();
  return state && rate > 0 ? static_cast<double>(state->latencyFrames) / rate : 0;
}

void QueueEngine::setVolume(float volume) {
  _volume.store(volume);
  _line.setVolume(volume);
}

void QueueEngine::_dropAllItems(const ItemFate& fate) {
  const bool hadItems = !_items.empty();
  for (const auto& item : _items) item->leaveQueue(fate);
  _items.clear();
  _hasPlayed = _rate != 0;
  _startOver();
  _setItemsChanged(/*isCurrentItemOther=*/hadItems);
}

// Discards what was sent. Items still in the queue are decoded again, but for those that were
// fading out.
void QueueEngine::_startOver() {
  const auto isOver = [](const auto& item) { return item->isEndedEarly; };
  for (const auto& item : _items) {
    if (isOver(item)) item->leaveQueue(ItemFate::dropped("it was ended early"));
  }
  if (std::erase_if(_items, [](const auto& item) { return !item->isQueued(); }) > 0) {
    _setChanged(QueuePlayer::kCurrentItemKeyPath);
  }
  for (const auto& item : _items) item->cue.reset();
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

std::shared_ptr<PlayerItem> QueueEngine::currentItem() const {
  const Lock lock(_mutex);
  return _items.empty() ? nullptr : _items.front();
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
