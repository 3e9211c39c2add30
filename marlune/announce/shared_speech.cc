// Calls, which any thread makes.

#include "marlune/announce/shared_speech.h"

#include <algorithm>

#include "marlune/platform/platform.h"

namespace marlune {

SharedSpeech& SharedSpeech::ofProcess() {
  // Never destroyed: posted turns may run during process exit.
  static auto* const speech = new SharedSpeech;
  return *speech;
}

void SharedSpeech::enter() {
  if (_announcers++ > 0) return;
  SharedPlayback::ofProcess().initialize();
  SharedPlayback::ofProcess().setListener(this);
  if (const auto session = Platform::shared().audioSession) {
    session->setRouteLostHandler([this] { _routeLost(); });
  }
}

void SharedSpeech::leave(const State& announcer) {
  Lock lock(_mutex);
  _isHoldUnwanted = true;
  _endEach([&](const Speech& each) { return each.announcer == announcer; }, Kind::stopped);
  if (_queue) _followQueue();
  _carryOutWishes(/*mustEnd=*/true);
  if (_resolving && _resolving->announcer == announcer) {
    _reportEnd(*_resolving, Kind::stopped, nullptr);
    _resolving->isEnded = true;
  }
  _deliver(lock, announcer.get());
  announcer->observer.reset();
  lock.unlock();
  _turn();
  if (--_announcers > 0) return;
  SharedPlayback::ofProcess().setListener(nullptr);
  if (const auto session = Platform::shared().audioSession) session->setRouteLostHandler(nullptr);
  lock.lock();
  _isPaused = _isHalted = _mustPlayOn = _ownsSession = false;
  _isTurnPosted = false;  // its main thread may have ended
  _volume = 1;
  _queue.reset();
  _hold.reset();
  _inherited.reset();
  _releaseAt.reset();
  _lostAt.reset();
  _postedWake.reset();
  _lastEnd.reset();
  _current = nullptr;
}

SharedSpeech::Place SharedSpeech::_newSpeech() {
  if (_spare.empty()) return std::make_unique<Speech>();
  Place speech = std::move(_spare.back());
  _spare.pop_back();
  return speech;
}

AnnouncementId SharedSpeech::say(const State& announcer, Announcement announcement) {
  AnnouncementId id = 0;
  {
    const Lock lock(_mutex);
    id = ++_lastId;
    Place speech = _newSpeech();
    speech->id = id;
    speech->announcer = announcer;
    speech->content = std::move(announcement);
    if (const auto within = speech->content.startWithin) speech->deadline = _now() + *within;
    _admit(std::move(speech));
  }
  // The caller should know the id before it hears of it.
  _turn(/*mayReport=*/!Platform::shared().mainThread);
  return id;
}

void SharedSpeech::_admit(Place speech) {
  const std::string& key = speech->content.key;
  if (!key.empty()) {
    const auto isReplaced = [&](const Speech& each) {
      return each.announcer == speech->announcer && each.content.key == key;
    };
    _waiting.remove(isReplaced, [this](Place each) { _end(std::move(each), Kind::replaced); });
    if (_ahead && !_ahead->wish && isReplaced(*_ahead)) _ahead->wish = Kind::replaced;
    if (_resolving && !_resolving->wish && isReplaced(*_resolving)) {
      _resolving->wish = Kind::replaced;
    }
  }
  if (!_makeRoomFor(speech)) return;
  const bool mayTakeOver = !_playing || _playing->content.priority <= speech->content.priority;
  if (speech->content.takeover != Announcement::Takeover::wait && mayTakeOver) {
    speech->rank = --_firstRank;
    if (_playing) speech->takesOver = _playing->id;
  } else {
    speech->rank = ++_lastRank;
  }
  _isHoldUnwanted = false;
  _waiting.add(std::move(speech));
}

// Returns false if the newcomer itself has failed.
bool SharedSpeech::_makeRoomFor(Place& newcomer) {
  const State announcer = newcomer->announcer;
  std::size_t count = 0;
  for (const Place& each : _waiting.all()) count += each->announcer == announcer;
  count += _ahead && !_ahead->wish && _ahead->announcer == announcer;
  count += _resolving && !_resolving->wish && _resolving->announcer == announcer;
  if (count < std::max<std::size_t>(announcer->settings.longestQueue, 1)) return true;
  Speech* const least = _waiting.leastUrgentOf(*announcer);
  const char* const message = "the queue is full";
  if (!least || least->content.priority >= newcomer->content.priority) {
    _fail(std::move(newcomer), Cause::queueFull, message);
    return false;
  }
  _waiting.remove([&](const Speech& each) { return &each == least; },
                  [&](Place each) { _fail(std::move(each), Cause::queueFull, message); });
  return true;
}

// Ends those that wait now, and those that are in the queue in the next turn.
template <typename IsMeant>
void SharedSpeech::_endEach(const IsMeant& isMeant, Kind kind) {
  _waiting.remove(isMeant, [&](Place each) { _end(std::move(each), kind); });
  for (Speech* const each : {_playing.get(), _ahead.get(), _resolving}) {
    if (each && (!each->wish || each->wish == Kind::replaced) && isMeant(*each)) each->wish = kind;
  }
}

void SharedSpeech::cancel(const State& announcer, AnnouncementId id) {
  {
    const Lock lock(_mutex);
    _endEach([&](const Speech& each) { return each.id == id && each.announcer == announcer; },
             Kind::cancelled);
  }
  _turn();
}

void SharedSpeech::cancelKey(const State& announcer, std::string_view key) {
  {
    const Lock lock(_mutex);
    _endEach(
        [&](const Speech& each) {
          return each.announcer == announcer && !key.empty() && each.content.key == key;
        },
        Kind::cancelled);
  }
  _turn();
}

void SharedSpeech::stop(const State& announcer) {
  {
    const Lock lock(_mutex);
    _isHoldUnwanted = true;
    _endEach([&](const Speech& each) { return each.announcer == announcer; }, Kind::stopped);
  }
  _turn();
}

void SharedSpeech::setPaused(bool isPaused) {
  {
    const Lock lock(_mutex);
    _isPaused = isPaused;
  }
  _turn();
}

bool SharedSpeech::isPaused() const {
  const Lock lock(_mutex);
  return _isPaused;
}

void SharedSpeech::setVolume(float volume) {
  {
    const Lock lock(_mutex);
    _volume = volume >= 0 ? std::min(volume, 1.0f) : 0;
  }
  _turn();
}

float SharedSpeech::volume() const {
  const Lock lock(_mutex);
  return _volume;
}

void SharedSpeech::_end(Place speech, AnnouncementEnd end) {
  const Kind kind = end.kind;
  _end(std::move(speech), kind, std::make_unique<AnnouncementEnd>(std::move(end)));
}

void SharedSpeech::_end(Place speech, Kind kind, std::unique_ptr<const AnnouncementEnd> end) {
  if (!speech->isEnded) _reportEnd(*speech, kind, std::move(end));
  speech->clear();
  _spare.push_back(std::move(speech));
}

void SharedSpeech::_reportEnd(const Speech& speech, Kind kind,
                              std::unique_ptr<const AnnouncementEnd> end) {
  _events.add({speech.announcer, EventList::Event::What::ended, speech.id, speech.id, nullptr, 0,
               kind, std::move(end)});
}

void SharedSpeech::_fail(Place speech, Cause cause, std::string message) {
  _end(std::move(speech), AnnouncementEnd{Kind::failed, cause, std::move(message), {}});
}

}  // namespace marlune
