// A turn, on the main thread.

#include <algorithm>
#include <utility>

#include "marlune/announce/shared_speech.h"
#include "marlune/platform/platform.h"

namespace marlune {

namespace {

constexpr double kAheadSeconds = 0.3;   // how early an announcement enters the queue
constexpr double kCheckSeconds = 0.1;   // how often the one queued ahead is judged again
constexpr double kSlipSeconds = 0.05;   // a later start than expected: the device has slept
constexpr double kRetrySeconds = 0.02;  // when the sound was faster than a takeover
constexpr double kRounding = 1e-6;
constexpr int kMostRounds = 100;  // before the main thread's other work gets its turn

}  // namespace

void SharedSpeech::_turn(bool mayReport) {
  if (!SharedPlayback::onMainThread()) return _postTurn();
  if (std::exchange(_isTurnWanted, true) && _isInTurn) return;
  if (_isInTurn) return;
  Lock lock(_mutex);
  _isInTurn = true;
  int rounds = 0;
  while (std::exchange(_isTurnWanted, false)) {
    // An observer that answers every end with a new announcement must not block the main thread.
    if (++rounds > kMostRounds && Platform::shared().mainThread) {
      _wakeAt(_now());
      break;
    }
    _wake.reset();
    _step(lock);
    if (mayReport) _deliver(lock, nullptr);
  }
  _isInTurn = false;
  const bool mustReport = !mayReport && !_events.isEmpty();
  lock.unlock();
  if (mustReport) _postTurn();
  _postWake();
}

void SharedSpeech::_postTurn() {
  {
    const Lock lock(_mutex);
    if (std::exchange(_isTurnPosted, true)) return;
  }
  Platform::shared().mainThread->post([this] {
    {
      const Lock lock(_mutex);
      _isTurnPosted = false;
    }
    _turn();
  });
}

void SharedSpeech::queueReplaced() {
  {
    const Lock lock(_mutex);
    if (_queue) _loseOutput();
  }
  _turn();
}

void SharedSpeech::_routeLost() {
  {
    const Lock lock(_mutex);
    if (!_playing) return;
    if (_playing->announcer->settings.routeLost != AnnouncerSettings::RouteLost::pause) return;
    _isPaused = true;
  }
  _turn();
}

void SharedSpeech::_step(Lock& lock) {
  if (!_queue && !_waiting.empty()) _queue = SharedPlayback::ofProcess().__sharedPlayQueue();
  if (_queue && _queue->status() == QueuePlayer::Status::failed) return;  // is being replaced
  if (_queue && _queue->volume() != _volume) _queue->setVolume(_volume);
  if (_queue) _followQueue();
  if (_isQuiet()) return;
  _carryOutWishes(/*mustEnd=*/false);
  _expireWaiting();
  _followPause();
  if (_isPaused) return;
  if (_lostAt) _recover();
  if (_lostAt) return;
  _checkAhead();
  _takeOver(lock);
  _queueNext(lock);
  _keepPlaying();
  _endHold();
  _endSilence(_inherited);
  _releaseSession();
  if (_queue && _hasChangedQueue) _followQueue();
  if (_ahead && _ahead->deadline) _wakeAt(_now() + kCheckSeconds);
}

// Whether one announcement is playing, and nothing else is to be done: most steps from recording to
// recording.
bool SharedSpeech::_isQuiet() const {
  return _playing && !_playing->wish && !_ahead && _waiting.empty() && !_inherited && !_lostAt &&
         !_isPaused && !_isHalted;
}

void SharedSpeech::_deliver(Lock& lock, const Announcer::State* only) {
  using What = EventList::Event::What;
  EventList::Event event;
  while (_events.take(only, event)) {
    const auto observer = event.announcer->observer;
    if (!observer) continue;
    lock.unlock();
    switch (event.what) {
      case What::started:
        if (observer->started) observer->started(event.id);
        break;
      case What::recording:
        if (!observer->recording) break;
        observer->recording(event.id, event.phrase->recordings[event.recording]);
        break;
      case What::ended: {
        const AnnouncementEnd plain{event.kind, {}, {}, {}};
        const AnnouncementEnd& end = event.end ? *event.end : plain;
        for (AnnouncementId id = event.id; observer->ended && id <= event.lastId; ++id) {
          observer->ended(id, end);
        }
        break;
      }
    }
    lock.lock();
  }
}

void SharedSpeech::_wakeAt(double time) { _wake = std::min(_wake.value_or(time), time); }

// A later wake-up that was posted before stays posted; its turn finds nothing to do.
void SharedSpeech::_postWake() {
  const auto mainThread = Platform::shared().mainThread;
  if (!_wake || !mainThread || (_postedWake && *_postedWake <= *_wake)) return;
  _postedWake = _wake;
  mainThread->postAfter(std::max(*_wake - _now(), 0.0), [this, number = ++_wakeNumber] {
    if (number == _wakeNumber) _postedWake.reset();
    _turn();
  });
}

void SharedSpeech::_carryOutWishes(bool mustEnd) {
  if (_ahead && _ahead->wish) {
    const Kind kind = *_ahead->wish;
    if (_withdrawAhead()) {
      _end(std::move(_ahead), kind);
    } else if (kind != Kind::replaced) {
      _cut(_ahead, kind, mustEnd);
    }
  }
  if (_playing && _playing->wish) _cut(_playing, *_playing->wish, mustEnd);
}

void SharedSpeech::_expireWaiting() {
  const double now = _now();
  _waiting.remove(
      [now](const Speech& each) { return each.deadline && now > *each.deadline + kRounding; },
      [this](Place each) { _end(std::move(each), Kind::expired); });
  for (const Place& each : _waiting.all()) {
    if (each->deadline) _wakeAt(*each->deadline + 2 * kRounding);
  }
}

void SharedSpeech::_followPause() {
  if (_isHalted && _isPaused && _isQueuePlaying()) _isPaused = false;  // a player has resumed it
  if (_isPaused && !std::exchange(_isHalted, true)) _halt();
  if (!_isPaused && std::exchange(_isHalted, false)) {
    _releaseAt.reset();
    if (_lostAt) _lostAt = _now();
  }
  if (!_isHalted || !_queue) return;
  if (!_queue->currentItem()) _releaseAt = _now();
  if (!_releaseAt) return;
  if (_now() + kRounding < *_releaseAt) return _wakeAt(*_releaseAt);
  _releaseAt.reset();
  if (std::exchange(_ownsSession, false)) {
    SharedPlayback::ofProcess()._setAudioSessionActive(false);
  }
}

void SharedSpeech::_halt() {
  if (!_queue || !_isQueuePlaying()) return;
  _queue->setRate(0);
  _mustPlayOn = true;
  if (_ahead && (_withdrawAhead() || _withdrawUnheard())) _waiting.add(std::move(_ahead));
  _endSilence(_hold);
  _endSilence(_inherited);
  _ownsSession = true;
  _releaseAt =
      _now() +
      (_playing ? _playing->announcer->settings : AnnouncerSettings()).pausedSessionSeconds;
}

// What is queued ahead was judged when it entered the queue. It is judged again if the sound before
// it stood still.
void SharedSpeech::_checkAhead() {
  if (!_ahead || !_ahead->deadline) return;
  const auto before = _secondsInQueue();
  if (!before) return;
  const double start = _startOf(*_ahead, *before);
  if (start < _ahead->start + kSlipSeconds || start <= *_ahead->deadline + kRounding) return;
  if (_withdrawAhead()) _end(std::move(_ahead), Kind::expired);
}

// The most urgent announcement ends the one that is playing, if it is to.
void SharedSpeech::_takeOver(Lock& lock) {
  while (_playing && !_waiting.empty()) {
    const Speech& next = _waiting.front();
    const AnnouncementId playing = _playing->id;
    if (next.takesOver != playing || (_ahead && _ahead->isBefore(next))) return;
    const bool isAtOnce = next.content.takeover == Announcement::Takeover::atOnce;
    const double left = isAtOnce ? 0 : _secondsLeftOfRecording();
    if (left > kAheadSeconds + kRounding) return _wakeAt(_now() + left - kAheadSeconds);
    const double silence = isAtOnce ? 0 : _silenceBefore(next);
    const double before = isAtOnce ? kFadeSeconds + _queue->latencySeconds() : left;
    Place place = _resolve(lock, _now() + silence + std::max(before, _queue->latencySeconds()));
    if (!place) continue;
    _followQueue();
    const bool isStillPlaying = _playing && _playing->id == playing;
    if (!isStillPlaying || !(isAtOnce || _endAfterRecording()) || !_makeWayFor(*place)) {
      _waiting.add(std::move(place));
      return _wakeAt(_now() + kRetrySeconds);
    }
    auto inherited = isAtOnce ? std::exchange(_inherited, nullptr) : nullptr;
    const bool isInQueue = _putInQueue(std::move(place), silence);
    _endSilence(inherited);
    if (isInQueue && isAtOnce) _cut(_playing, Kind::interrupted);
  }
}

// Returns false if the next recording has begun just now.
bool SharedSpeech::_endAfterRecording() {
  const std::size_t next = _playing->left + 1;
  if (next >= _playing->items.size()) return true;
  if (!_queue->removeUnbegun(_playing->itemsFrom(next))) return false;
  _playing->items.resize(next);
  _playing->isCut = true;
  return true;
}

// The one that is queued ahead waits again, unless it has begun. Returns whether the queue's end is
// free.
bool SharedSpeech::_makeWayFor(const Speech& next) {
  if (!_ahead) return true;
  if (!next.isBefore(*_ahead) || !_withdrawAhead()) return false;
  _waiting.add(std::move(_ahead));
  return true;
}

void SharedSpeech::_queueNext(Lock& lock) {
  while (!_waiting.empty()) {
    const Speech& next = _waiting.front();
    if (!_queue) {
      _fail(_waiting.takeFront(), Cause::noDevice, "the platform has no queue player");
      continue;
    }
    if (_ahead && !next.isBefore(*_ahead)) return;
    const auto before = _secondsInQueue();
    if (!before) return;  // the next change of the current item may tell
    if (*before > kAheadSeconds + kRounding) return _wakeAt(_now() + *before - kAheadSeconds);
    Place place = _resolve(lock, _startOf(next, *before));
    if (!place) continue;
    _followQueue();
    if (!_makeWayFor(*place)) {
      _waiting.add(std::move(place));
      return;
    }
    // The sound may have gone on while the app's functions were called.
    const double start = _startOf(*place, _secondsInQueue().value_or(0));
    if (place->deadline && start > *place->deadline + kRounding) {
      _waiting.add(std::move(place));
      continue;
    }
    const double silence = _silenceBefore(*place);
    std::string fault;
    if (!_isQueuePlaying() && !_openOutput(fault)) {
      _fail(std::move(place), Cause::noDevice, std::move(fault));
      continue;
    }
    _putInQueue(std::move(place), silence);
  }
}

// After a pause, and when the queue is filled for the first time.
void SharedSpeech::_keepPlaying() {
  if (!_queue || _isQueuePlaying() || !_queue->currentItem()) return;
  if (!_playing && !_ahead && !_mustPlayOn) return;  // a player's sound, which is not ours to start
  _mustPlayOn = false;
  std::string fault;
  if (_openOutput(fault)) {
    _queue->play();
    _followQueue();
  } else {
    _pullBack();
    _recover();
  }
}

void SharedSpeech::_endHold() {
  if (!_queue || !_hold) return;
  const auto current = _queue->currentItem();
  const bool isFollowed = current == _hold && _queue->items().size() > 1;  // by a player's sound
  const bool isIdle = !_playing && !_ahead && _waiting.empty();
  if (isFollowed || (isIdle && _isHoldUnwanted)) _endSilence(_hold);
}

void SharedSpeech::_endSilence(std::shared_ptr<PlayerItem>& item) {
  if (item) _remove(std::exchange(item, nullptr));
}

// The players release the session when the queue runs empty while it plays. Otherwise it is done
// here.
void SharedSpeech::_releaseSession() {
  if (!_ownsSession || _playing || _ahead || _isQueuePlaying()) return;
  if (_queue && _queue->currentItem()) return;
  _ownsSession = false;
  SharedPlayback::ofProcess()._setAudioSessionActive(false);
}

SharedSpeech::Place SharedSpeech::_resolve(Lock& lock, double start) {
  Place place = _waiting.takeFront();
  _resolving = place.get();
  auto end = _judge(lock, *place, start);
  _resolving = nullptr;
  const bool isOvertaken = !_waiting.empty() && _waiting.front().isBefore(*place);
  if (!place->isEnded && !place->wish && !end && !isOvertaken) return place;
  if (place->isEnded || place->wish) {
    const Kind kind = place->wish.value_or(Kind::stopped);
    _end(std::move(place), kind);
  } else if (end) {
    _end(std::move(place), *std::move(end));
  } else {
    _waiting.add(std::move(place));
  }
  return nullptr;
}

std::optional<AnnouncementEnd> SharedSpeech::_judge(Lock& lock, Speech& speech, double start) {
  const double before = _now();
  const auto isLate = [&](double at) {
    return speech.deadline && at > *speech.deadline + kRounding;
  };
  if (isLate(start)) return AnnouncementEnd{Kind::expired, {}, {}, {}};
  if (speech.content.isStillValid) {
    lock.unlock();
    const bool isValid = speech.content.isStillValid();
    lock.lock();
    if (!isValid) return AnnouncementEnd{Kind::noLongerValid, {}, {}, {}};
  }
  const Preparation preparation = _prepare(lock, speech);
  if (!preparation.isSayable()) {
    const PhraseProblem& problem = preparation.problem();
    return AnnouncementEnd{Kind::unsayable, {}, problem.message, problem};
  }
  speech.phrase = preparation.phrase();
  // The app's functions may have taken their time.
  speech.start = start + _now() - before;
  if (isLate(speech.start)) return AnnouncementEnd{Kind::expired, {}, {}, {}};
  return std::nullopt;
}

// The first wording that can be said, or the first problem.
Preparation SharedSpeech::_prepare(Lock& lock, const Speech& speech) {
  const Announcement& content = speech.content;
  if (content.prepared) return content.prepared;
  const auto preparer = speech.announcer->preparer;
  lock.unlock();
  Preparation first = content.wordsWhenDue ? preparer->prepare(content.wordsWhenDue())
                                           : preparer->prepare(content.words);
  for (std::size_t i = 0; !first.isSayable() && i < content.alternatives.size(); ++i) {
    Preparation other = preparer->prepare(content.alternatives[i]);
    if (other.isSayable()) first = std::move(other);
  }
  lock.lock();
  return first;
}

}  // namespace marlune
