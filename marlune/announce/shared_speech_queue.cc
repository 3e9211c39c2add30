// The queue and the output, on the main thread.

#include <algorithm>
#include <chrono>
#include <span>
#include <utility>

#include "marlune/announce/shared_speech.h"
#include "marlune/platform/clock.h"
#include "marlune/platform/platform.h"
#include "marlune/util/tq_utils.h"

namespace marlune {

namespace {

constexpr double kRetrySeconds = 0.25;  // between attempts to open a lost output
constexpr int kMostRestarts = 5;        // of an announcement whose output is lost again and again

using Fate = ItemFate::Kind;

bool isHeard(Fate fate) { return fate == Fate::heardWhole || fate == Fate::cutShort; }

void noteFate(Speech& speech, const ItemFate& fate) {
  using Cause = AnnouncementEnd::Cause;
  if (fate.kind == Fate::dropped) speech.isDropped = true;
  if (fate.kind != Fate::leftOut && fate.kind != Fate::cutShort) return;
  if (speech.fault != Cause::none) return;
  speech.fault =
      fate.kind == Fate::leftOut ? Cause::recordingUnreadable : Cause::recordingTruncated;
  const SpokenRecording& recording = speech.phrase->recordings[speech.recordings[speech.left]];
  speech.faultMessage = "\"" + recording.name + "\": " + fate.message;
}

}  // namespace

double SharedSpeech::_now() {
  if (const auto& clock = Platform::shared().clock) return clock->now();
  const std::chrono::duration<double> time = std::chrono::steady_clock::now().time_since_epoch();
  return time.count();
}

// Compares the items with what has become of them since the last look.
void SharedSpeech::_followQueue() {
  _hasChangedQueue = false;
  const bool hasFailed = _queue->status() == QueuePlayer::Status::failed;
  const auto current = hasFailed ? nullptr : _queue->currentItem();
  if (current.get() != _current) {
    _current = current.get();
    if (!_queue->secondsHeard()) _currentSince = _now();
  }
  while (_playing || (_ahead && _hasBegun(*_ahead, current.get()))) {
    if (!_playing) {
      _playing = std::move(_ahead);
      if (_playing->wish == Kind::replaced) _playing->wish.reset();
    }
    _followPlaying(current.get());
    if (_playing->items.empty() || _playing->left < _playing->items.size()) break;
    _finish();
  }
  for (auto* const silence : {&_hold, &_inherited}) {
    if (*silence && (*silence)->fate().kind != Fate::pending) silence->reset();
  }
}

// An announcement that a failed queue has dropped counts as not begun, one that a player's
// stopAllSounds() has removed as ended.
bool SharedSpeech::_hasBegun(const Speech& speech, const PlayerItem* current) const {
  const Fate fate = speech.items.front()->fate().kind;
  if (fate == Fate::pending) {
    return speech.items.front().get() == current && _isQueuePlaying();
  }
  return fate != Fate::dropped || _queue->status() != QueuePlayer::Status::failed;
}

void SharedSpeech::_followPlaying(const PlayerItem* current) {
  using What = EventList::Event::What;
  const bool hasFailed = _queue->status() == QueuePlayer::Status::failed;
  Speech& speech = *_playing;
  for (; speech.left < speech.items.size(); ++speech.left) {
    const PlayerItem& item = *speech.items[speech.left];
    const ItemFate fate = item.fate();
    const bool isCurrent = fate.kind == Fate::pending && &item == current;
    if ((isCurrent || isHeard(fate.kind)) && speech.reported == speech.left) {
      if (!std::exchange(speech.hasStarted, true)) {
        _events.add({speech.announcer, What::started, speech.id});
      }
      _events.add({speech.announcer, What::recording, speech.id, 0, speech.phrase,
                   speech.recordings[speech.left]});
    }
    if (fate.kind == Fate::pending) {
      if (isCurrent) speech.reported = speech.left + 1;
      return;
    }
    if (fate.kind == Fate::dropped && hasFailed) return;
    noteFate(speech, fate);
    speech.reported = speech.left + 1;
  }
}

void SharedSpeech::_finish() {
  _lastEnd = _now();
  const Speech& speech = *_playing;
  if (speech.isDropped) {
    _end(std::move(_playing), Kind::stopped);
  } else if (speech.isCut) {
    _end(std::move(_playing), Kind::interrupted);
  } else if (speech.fault != Cause::none) {
    const Cause cause = speech.fault;
    std::string message = speech.faultMessage;
    _fail(std::move(_playing), cause, std::move(message));
  } else {
    _end(std::move(_playing), Kind::finished);
  }
}

// Behind what is in the queue, but before the hold. Returns false if the announcement has failed.
bool SharedSpeech::_putInQueue(Place speech, double silence) {
  if (_hold && _queue->removeUnbegun(std::span(&_hold, 1))) _hold.reset();
  speech->silence = std::exchange(_inherited, nullptr);
  if (!_insertItems(*speech, speech->silence ? 0 : silence)) {
    std::string message = speech->faultMessage;
    _fail(std::move(speech), Cause::recordingUnreadable, std::move(message));
    return false;
  }
  // Only now, so that the queue does not run empty in between.
  _endSilence(_hold);
  _ahead = std::move(speech);
  _hold = _appendSilence(_ahead->announcer->settings.holdSeconds);
  return true;
}

bool SharedSpeech::_insertItems(Speech& speech, double silence) {
  if (auto item = _appendSilence(silence)) speech.silence = std::move(item);
  const auto& makePlayerItem = Platform::shared().makePlayerItem;
  const auto& recordings = speech.phrase->recordings;
  for (std::size_t i = 0; i < recordings.size(); ++i) {
    auto item = makePlayerItem ? makePlayerItem(recordings[i].path) : nullptr;
    if (_append(item)) {
      speech.items.push_back(std::move(item));
      speech.recordings.push_back(i);
    } else if (speech.fault == Cause::none) {
      speech.fault = Cause::recordingUnreadable;
      speech.faultMessage = "\"" + recordings[i].name + "\" was refused by the queue";
    }
  }
  if (!speech.items.empty()) return true;
  if (speech.silence) _remove(std::exchange(speech.silence, nullptr));
  return false;
}

bool SharedSpeech::_append(const std::shared_ptr<PlayerItem>& item) {
  if (!item || !_queue->canInsert(item.get(), nullptr)) return false;
  const SharedPlayback::Adding adding(SharedPlayback::ofProcess());
  _hasChangedQueue = true;
  _queue->insert(item, nullptr);
  return true;
}

std::shared_ptr<PlayerItem> SharedSpeech::_appendSilence(double seconds) {
  const auto& silentItem = Platform::shared().silentItem;
  if (seconds <= 0 || !silentItem) return nullptr;
  auto item = silentItem(seconds);
  return _append(item) ? item : nullptr;
}

// Takes the one that is queued ahead out of the queue again. Returns false if it has begun.
bool SharedSpeech::_withdrawAhead() {
  if (!_queue->removeUnbegun(_ahead->itemsFrom(0))) return false;
  if (_ahead->silence) _inherited = std::move(_ahead->silence);
  _ahead->leaveQueue();
  return true;
}

// While the queue is halted: takes the one that is queued ahead out of it even if the output has
// begun to take it, because none of that was heard. Returns false if a recording was taken whole.
bool SharedSpeech::_withdrawUnheard() {
  if (!_queue->endEarly(_ahead->items.front().get(), 0)) return false;
  _queue->removeUnbegun(_ahead->itemsFrom(1));
  if (_ahead->silence) _inherited = std::move(_ahead->silence);
  _ahead->leaveQueue();
  return true;
}

void SharedSpeech::_remove(const std::shared_ptr<PlayerItem>& item) {
  _hasChangedQueue = true;
  if (!_queue->removeUnbegun(std::span(&item, 1))) _queue->endEarly(item.get(), 0);
}

// Removes the items from `index` on, or from the first one behind it that has not begun. Returns
// whether there was one.
bool SharedSpeech::_removeFrom(Speech& speech, std::size_t index) {
  for (std::size_t i = index; i < speech.items.size(); ++i) {
    if (!_queue->removeUnbegun(speech.itemsFrom(i))) continue;
    speech.items.resize(i);
    speech.isCut = true;
    return true;
  }
  return false;
}

// Silences an announcement that is in the queue, and ends it. If the output has already taken the
// last of its sound, it cannot be silenced any more, and goes on to its end unless that must be
// now.
void SharedSpeech::_cut(Place& place, Kind kind, bool mustEnd) {
  _hasChangedQueue = true;
  bool isSilenced = place->items.empty() || _removeFrom(*place, place->left);
  for (const auto& item : place->itemsFrom(place->left)) {
    isSilenced |= _queue->endEarly(item.get(), kFadeSeconds);
  }
  if (!isSilenced && !mustEnd) return place->wish.reset();
  if (place->silence && place->silence->fate().kind == Fate::pending) _remove(place->silence);
  _lastEnd = _now();
  _end(std::move(place), kind);
}

bool SharedSpeech::_activateSession(std::string& fault) {
  const auto session = Platform::shared().audioSession;
  const auto outcome = session ? session->setActive(true) : AudioSession::Outcome();
  if (outcome.succeeded) {
    _ownsSession = true;
  } else {
    fault = outcome.error.value_or("there is no sound output");
  }
  return outcome.succeeded;
}

bool SharedSpeech::_openOutput(std::string& fault) {
  if (_activateSession(fault)) return true;
  TQUtils::log("ERROR: The sound output could not be opened for an announcement: %@", fault);
  return false;
}

// The queue has failed, and there is a new one.
void SharedSpeech::_loseOutput() {
  _followQueue();
  _queue = SharedPlayback::ofProcess().__sharedPlayQueue();
  if (_queue) _queue->setVolume(_volume);
  _hold.reset();
  _inherited.reset();
  _current = nullptr;
  if (_playing && _playing->isCut) _end(std::move(_playing), Kind::interrupted);
  if (_playing) {
    _playing->leaveQueue();
    ++_playing->restarts;
  }
  if (_ahead) {
    _ahead->leaveQueue();
    ++_ahead->restarts;
    if (_ahead->wish) {
      const Kind kind = *_ahead->wish;
      _end(std::move(_ahead), kind);
    } else {
      _waiting.add(std::move(_ahead));
    }
  }
  if (!_lostAt) _lostAt = _now();
}

// The output could not be opened again after a pause.
void SharedSpeech::_pullBack() {
  if (_ahead && _withdrawAhead()) _waiting.add(std::move(_ahead));
  _endSilence(_hold);
  if (_playing) {
    _removeFrom(*_playing, _playing->left);
    for (const auto& item : _playing->itemsFrom(_playing->left)) _queue->endEarly(item.get(), 0);
    _playing->leaveQueue();
  }
  _lostAt = _now();
}

void SharedSpeech::_recover() {
  const Speech* const next = _playing           ? _playing.get()
                             : _waiting.empty() ? nullptr
                                                : &_waiting.front();
  if (!next) {
    _lostAt.reset();
    return _releaseSession();
  }
  std::string fault = "the sound output is lost again and again";
  if (next->restarts > kMostRestarts) return _giveUp(fault);
  if (_queue && _activateSession(fault)) {
    _lostAt.reset();
    if (!_playing) return;
    if (!_insertItems(*_playing, _playing->announcer->settings.leadInSeconds)) {
      std::string message = _playing->faultMessage;
      return _fail(std::move(_playing), Cause::recordingUnreadable, std::move(message));
    }
    _hold = _appendSilence(_playing->announcer->settings.holdSeconds);
    _queue->play();
    return _followQueue();
  }
  const double until = *_lostAt + next->announcer->settings.deviceWaitSeconds;
  if (_now() >= until) return _giveUp(fault);
  _wakeAt(std::min(until, _now() + kRetrySeconds));
}

// Those behind it try the output once each.
void SharedSpeech::_giveUp(const std::string& fault) {
  _lostAt.reset();
  TQUtils::log("ERROR: The sound output was lost during an announcement: %@", fault);
  _fail(_playing ? std::move(_playing) : _waiting.takeFront(), Cause::deviceLost, fault);
}

double SharedSpeech::_heardOfCurrent() const {
  return _queue->secondsHeard().value_or(_isQueuePlaying() ? _now() - _currentSince : 0);
}

std::optional<double> SharedSpeech::_secondsOf(const std::shared_ptr<PlayerItem>& item) const {
  if (const auto seconds = item->seconds()) return seconds;
  for (const Speech* const each : {_playing.get(), _ahead.get()}) {
    if (!each) continue;
    const auto place = std::find(each->items.begin(), each->items.end(), item);
    if (place == each->items.end()) continue;
    const auto index = static_cast<std::size_t>(place - each->items.begin());
    return each->phrase->recordings[each->recordings[index]].seconds;
  }
  return std::nullopt;
}

std::optional<double> SharedSpeech::_secondsInQueue() const {
  const auto current = _queue->currentItem();
  if (!current || current == _hold) return 0;  // the hold ends as soon as something is to be said
  double seconds = -_heardOfCurrent();
  bool isUnknown = false;
  for (const auto& item : _queue->items()) {
    if (item == _inherited) break;
    if (_ahead && (item == _ahead->silence || item == _ahead->items.front())) break;
    if (item == _hold) continue;
    if (isUnknown) return std::nullopt;
    const auto length = _secondsOf(item);
    isUnknown = !length;
    if (isUnknown && item != current) return std::nullopt;
    seconds += length.value_or(0);
  }
  return isUnknown ? 0 : std::max(seconds, 0.0);
}

double SharedSpeech::_secondsLeftOfRecording() const {
  if (_playing->left >= _playing->items.size()) return 0;
  const auto& item = _playing->items[_playing->left];
  const auto seconds = _secondsOf(item);
  if (!seconds || item != _queue->currentItem()) return 0;
  return std::max(*seconds - _heardOfCurrent(), 0.0);
}

double SharedSpeech::_silenceBefore(const Speech& speech) const {
  const auto& inQueue = _ahead && _ahead->silence ? _ahead->silence : _inherited;
  if (inQueue) return _secondsLeftOf(inQueue);
  const AnnouncerSettings& settings = speech.announcer->settings;
  if (!Platform::shared().silentItem) return 0;
  if (!_isQueuePlaying()) return settings.leadInSeconds;
  if (_playing) return settings.pauseSeconds;
  return _lastEnd ? std::max(settings.pauseSeconds - (_now() - *_lastEnd), 0.0) : 0;
}

double SharedSpeech::_secondsLeftOf(const std::shared_ptr<PlayerItem>& silence) const {
  if (silence->fate().kind != Fate::pending) return 0;
  const double heard = silence == _queue->currentItem() ? _heardOfCurrent() : 0;
  return std::max(silence->seconds().value_or(0) - heard, 0.0);
}

double SharedSpeech::_startOf(const Speech& speech, double secondsBefore) const {
  return _now() + _silenceBefore(speech) + std::max(secondsBefore, _queue->latencySeconds());
}

}  // namespace marlune
