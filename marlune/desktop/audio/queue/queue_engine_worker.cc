// The worker thread's half of QueueEngine.

#include <algorithm>
#include <utility>

#include "marlune/desktop/audio/queue/queue_engine.h"
#include "marlune/util/tq_utils.h"

namespace marlune {

namespace {
// Polling interval while playing: the callback must not lock, so it cannot wake the worker.
constexpr std::chrono::milliseconds kLookInterval(3);
// While there is more to decode, a change waits this long for others: posting costs a round trip to
// the main thread, and rendering to a file can end several recordings per millisecond.
constexpr std::chrono::milliseconds kPostDelay(5);
}  // namespace

void QueueEngine::_run() {
  Lock lock(_mutex);
  while (!_isStopping) {
    if (std::exchange(_hasRequest, false)) _isSettled = false;
    lock.unlock();
    const bool hasMoved = _step();
    lock.lock();
    if (hasMoved && Clock::now() - _firstChange < kPostDelay) continue;
    _postChanges();
    if (hasMoved || _hasRequest || _isStopping) continue;
    _isSettled = true;
    _settled.notify_all();
    const auto isWanted = [this] { return _hasRequest || _isStopping; };
    if (_isSounding() || !_endings.empty()) {
      _wake.wait_for(lock, kLookInterval, isWanted);
    } else {
      _wake.wait(lock, isWanted);
    }
  }
}

// One round of work. Returns whether it made progress, so that another round may follow.
bool QueueEngine::_step() {
  const std::optional<std::uint64_t> orders =
      _ordersWhileSounding();  // before the route's state is read
  const std::optional<AudioRoute::State> state = _route->stateFor(*this);
  _collectReturned();
  bool hasMoved = _endHeardItems(state);
  _reportGaps(orders.has_value(), state);
  if (_watch(orders, state)) return true;
  _reportUnderruns();
  if (!state) return hasMoved;
  _followOpening(*state);
  hasMoved |= _decodeBlock();
  const std::size_t waiting = _line.framesWaiting();
  if (state->isMine) _route->takeAvailable(*this, rate() != 0 ? waiting : 0);
  return hasMoved || _line.framesWaiting() < waiting;
}

void QueueEngine::_collectReturned() {
  while (SoundBlock* const block = _line.takeReturned()) {
    if (block->endsItem && block->isTaken) {
      _endings.push_back({block->generation, block->cue->serial, block->takenAt,
                          block->takenOpening, block->missingFrames});
    }
    _line.giveBack(block);
  }
}

// An item ends when it has been heard, which is the output's latency after its last frame was
// taken. If the output is closed earlier, it drops the frames and the item is played again.
bool QueueEngine::_endHeardItems(const std::optional<AudioRoute::State>& state) {
  bool hasMoved = false;
  if (state && state->opening == _opening) _latencyFrames = state->latencyFrames;
  while (!_endings.empty()) {
    const Ending ending = _endings.front();
    const Lock lock(_mutex);
    // Otherwise it was removed in between.
    const bool isCurrent = ending.generation == _generation && !_items.empty() &&
                           _items.front()->cue && _items.front()->cue->serial == ending.serial;
    if (isCurrent) {
      if (_isHeard(ending, state)) {
        _items.front()->leaveQueue(_items.front()->isEndedEarly
                                       ? ItemFate::dropped("it was ended early")
                                       : ItemFate::heard(ending.missingFrames));
        _items.pop_front();
        --_sentItems;
        _setItemsChanged(/*isCurrentItemOther=*/true);
      } else if (state && state->opening == ending.opening) {
        break;
      } else {
        _startOver();
      }
    }
    _endings.pop_front();
    hasMoved = true;
  }
  return hasMoved;
}

bool QueueEngine::_isHeard(const Ending& ending,
                           const std::optional<AudioRoute::State>& state) const {
  // In a later opening the count of taken frames does not show what was heard in this one.
  if (state && state->opening != ending.opening) return _latencyFrames == 0;
  return _line.framesTaken() >= ending.takenAt + _latencyFrames;
}

// The current number of orders, or nothing if the queue is not sounding.
std::optional<std::uint64_t> QueueEngine::_ordersWhileSounding() const {
  const Lock lock(_mutex);
  if (!_isSounding()) return std::nullopt;
  return _orders;
}

// Returns whether the output has a fault.
bool QueueEngine::_watch(std::optional<std::uint64_t> orders,
                         const std::optional<AudioRoute::State>& state) {
  if (!orders) {
    _isWatching = false;
    return false;
  }
  const std::optional<Failure> fault = _faultOf(state);
  if (fault) _fail(*fault, *orders, state ? state->opening : 0);
  return fault.has_value();
}

std::optional<Failure> QueueEngine::_faultOf(const std::optional<AudioRoute::State>& state) {
  if (!state) return _route->whyClosed();
  if (state->loss) return state->loss;
  if (_line.hasMisfit()) {
    return Failure::unavailable("The sound output changed its number of channels while open.");
  }
  const Clock::time_point now = Clock::now();
  const std::uint64_t taken = _line.framesTaken();
  const bool hasMoved = taken != _watchedFrames || state->opening != _opening;
  if (!std::exchange(_isWatching, true) || hasMoved || !state->isMine) {
    _watchedFrames = taken;
    _lastMove = now;
    return std::nullopt;
  }
  const std::chrono::duration<double> still = now - _lastMove;
  if (!state->stallLimitSeconds || still.count() < *state->stallLimitSeconds) return std::nullopt;
  return Failure::unavailable("The sound output has stopped taking sound.");
}

void QueueEngine::_fail(const Failure& reason, std::uint64_t orders, std::uint64_t opening) {
  _route->setLost(opening, reason);
  std::size_t dropped = 0;
  {
    const Lock lock(_mutex);
    // The queue was stopped, and perhaps restarted on a new opening: the observation is out of
    // date.
    if (!_isSounding() || _orders != orders) return;
    dropped = _items.size();
    _status = QueuePlayer::Status::failed;
    _setChanged(QueuePlayer::kStatusKeyPath);
    _rate = 0;
    _line.setRunning(false);
    _dropAllItems(ItemFate::dropped("the play queue has failed: " + reason.message));
  }
  TQUtils::log("ERROR: The play queue has failed: %@ Sound files dropped: %lu.", reason.message,
               dropped);
}

// Logs one line per phrase: from when the queue begins to sound until it runs empty or is stopped.
void QueueEngine::_reportGaps(bool isSounding, const std::optional<AudioRoute::State>& state) {
  if (state) _gapCount = state->gapCount;
  if (isSounding) {
    if (state && !_gapsBefore) _gapsBefore = _gapCount;
    return;
  }
  const std::uint64_t gaps = _gapCount - _gapsBefore.value_or(_gapCount);
  _gapsBefore.reset();
  if (gaps == 0) return;
  TQUtils::log("ERROR: The sound had gaps: the output ran out of it %lu times.", gaps);
}

// Logs one line per gap, or per group of gaps within one polling interval.
void QueueEngine::_reportUnderruns() {
  const std::uint64_t frames = _line.underrunFrames();
  if (frames == _reportedUnderrun) return;
  TQUtils::log("ERROR: Decoding was late: %lu frames of silence were played instead of sound.",
               frames - _reportedUnderrun);
  _reportedUnderrun = frames;
}

// A reopened output may have another format and may have dropped frames that it had taken. Sent
// blocks are then made again; a recording that was half played restarts.
void QueueEngine::_followOpening(const AudioRoute::State& state) {
  if (_opening == state.opening) return;
  if (_format) {
    const std::optional<AudioFormat> format = _route->formatForClip(*_format, state.opening);
    if (!format) return;  // closed in between
    const Lock lock(_mutex);
    if (format != _format || _latencyFrames > 0) _startOver();
    _format = format;
  }
  _opening = state.opening;
  _latencyFrames = state.latencyFrames;
  _line.setOpening(_opening);
}

bool QueueEngine::_decodeBlock() {
  {
    const Lock lock(_mutex);
    const bool isObsolete =
        _decoderGeneration != _generation || (_decoderCue && _decoderCue->isRecalled.load());
    if (isObsolete) _decoder.reset();
  }
  SoundBlock* const block = _line.freshBlock();
  if (!block) return false;
  if (!_decoder && !_openNext()) {
    _line.giveBack(block);
    const Lock lock(_mutex);
    return _sentItems < _items.size();  // after one that was left out
  }
  if (_decoderCue->fadeFrames.load() == SoundCue::kNoFade) {
    _decoder->fill(*block);
  } else {
    block->frames = 0;  // the blocks that were sent are enough for the fade
    block->endsItem = true;
    block->channels = _format->channels;
  }
  _sendBlock(block);
  return true;
}

bool QueueEngine::_openNext() {
  std::shared_ptr<FilePlayerItem> item;
  {
    const Lock lock(_mutex);
    if (_sentItems == _items.size()) return false;
    item = _items[_sentItems];
    _decoderGeneration = _generation;
    _decoderCue = item->cue = std::make_shared<SoundCue>(++_lastSerial);
  }
  auto opened = _decoderOf(*item);
  if (!opened.succeeded()) {
    _skip(*item, opened.failure());
    return false;
  }
  std::unique_ptr<ClipDecoder> decoder = std::move(opened.value());
  const std::optional<AudioFormat> format = _route->formatForClip(decoder->clipFormat(), _opening);
  if (!format) return false;  // closed in between
  if (const auto failure = decoder->convertTo(*format)) {
    _skip(*item, *failure);
    return false;
  }
  _format = format;
  _outputRate.store(format->sampleRate);
  if (!item->seconds()) item->setSeconds(decoder->seconds());
  _decoder = std::move(decoder);
  _setReady();
  return true;
}

Result<std::unique_ptr<ClipDecoder>> QueueEngine::_decoderOf(FilePlayerItem& item) {
  if (!item.silence()) return ClipDecoder::open(item.path(), item.takeRecording());
  return ClipDecoder::silence(*item.silence(), _formatOfSilence());
}

// An output without a format of its own takes that of the first clip, which should be a
// recording's.
AudioFormat QueueEngine::_formatOfSilence() const {
  if (_format) return *_format;
  std::vector<std::shared_ptr<FilePlayerItem>> items;
  {
    const Lock lock(_mutex);
    items.assign(_items.begin(), _items.end());
  }
  for (const auto& item : items) {
    if (item->silence()) continue;
    auto opened = Recording::open(item->path());
    if (!opened.succeeded()) continue;
    const AudioFormat format = opened.value()->format();
    item->keepRecording(std::move(opened.value()));
    return format;
  }
  return {44'100, 2};
}

void QueueEngine::_skip(const FilePlayerItem& item, const Failure& failure) {
  {
    const Lock lock(_mutex);
    if (_decoderGeneration != _generation || _decoderCue->isRecalled.load()) return;  // dropped
    _items[_sentItems]->leaveQueue(ItemFate::leftOut(failure.message));
    _items.erase(_items.begin() + static_cast<long>(_sentItems));
    _setItemsChanged(/*isCurrentItemOther=*/_sentItems == 0);
  }
  TQUtils::log("ERROR: \"%@\" cannot be played and is left out: %@.", item.path(), failure.message);
}

void QueueEngine::_setReady() {
  const Lock lock(_mutex);
  if (_status != QueuePlayer::Status::unknown) return;
  _status = QueuePlayer::Status::readyToPlay;
  _setChanged(QueuePlayer::kStatusKeyPath);
}

void QueueEngine::_sendBlock(SoundBlock* block) {
  block->generation = _decoderGeneration;
  block->cue = _decoderCue;
  block->missingFrames = _decoder->missingFrames();
  const Lock lock(_mutex);
  if (_decoderGeneration != _generation || _decoderCue->isRecalled.load()) {
    _line.giveBack(block);
    return;
  }
  _line.send(block);
  if (!block->endsItem) return;
  _decoder.reset();
  ++_sentItems;
  _setItemsChanged(/*isCurrentItemOther=*/false);
}

void QueueEngine::_postChanges() {
  if (_changes.empty()) return;
  for (const std::string_view keyPath : _changes) _notifier->post(keyPath);
  _changes.clear();
}

}  // namespace marlune
