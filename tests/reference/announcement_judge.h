#ifndef MARLUNE_TESTS_REFERENCE_ANNOUNCEMENT_JUDGE_H_
#define MARLUNE_TESTS_REFERENCE_ANNOUNCEMENT_JUDGE_H_

#include <algorithm>
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "marlune/testing.h"

namespace marlune {

// The rules of announcements in their plainest form: holds what announcers report, and what
// sounded, against what was asked for. Knows nothing of how announcers work.
class AnnouncementJudge {
 public:
  using Kind = AnnouncementEnd::Kind;
  using Cause = AnnouncementEnd::Cause;
  using Takeover = Announcement::Takeover;

  // One announcement, as the judge has seen it.
  struct Case {
    AnnouncementId id = 0;
    int announcer = 0;
    std::vector<std::string> recordings;  // each said by this announcement only
    int priority = 0;
    Takeover takeover = Takeover::wait;
    double saidAt = 0;
    std::optional<double> deadline;
    std::string key;
    bool isSayable = true;
    bool isValid = true;
    bool isCancelled = false;
    bool isStopped = false;
    std::optional<double> startedAt;
    std::size_t reported = 0;  // recordings since the phrase began, or began again
    std::optional<double> endedAt;
    Kind end = Kind::finished;
    Cause cause = Cause::none;
  };

  explicit AnnouncementJudge(FakePlatform& platform) : _platform(platform) {}

  std::vector<std::string> faults;
  const std::map<AnnouncementId, Case>& cases() const { return _cases; }
  std::map<AnnouncementId, Case>& cases() { return _cases; }

  // What was asked for.
  void says(Case announcement) { _cases[announcement.id] = std::move(announcement); }
  void pauses(bool isPaused) {
    _isPaused = isPaused;
    _disturb();
  }
  void loses() {
    _hasLost = true;
    _disturb();
  }
  void disturbs() { _disturb(); }  // a stop, or a player's sound
  void sleeps(double seconds) { _disturbedAt = _platform.clock->now() + seconds; }
  std::map<int, std::size_t> longestQueue;  // by announcer
  double holdSeconds = 0;

  // What announcers report.
  AnnouncementObserver observer() {
    return {
        .started = [this](AnnouncementId id) { _started(id); },
        .recording = [this](AnnouncementId id,
                            const SpokenRecording& recording) { _recording(id, recording); },
        .ended = [this](AnnouncementId id, const AnnouncementEnd& end) { _ended(id, end); },
    };
  }

  // Called whenever the session may have changed.
  void watchSession() {
    const std::string& history = _platform.session->history;
    for (; _historySeen < history.size(); ++_historySeen) {
      if (history[_historySeen] == '+') continue;
      if (_isPaused || _hasLost || !_platform.session->hasDevice) continue;
      for (const auto& [id, each] : _cases) {
        if (each.saidAt > _platform.clock->now() - kRounding) continue;  // at the same moment
        if (!each.endedAt) _fault(id, "is not said, and yet the session was released");
      }
    }
  }

  // Once nothing more arrives and everything had the time to end.
  void judge() {
    watchSession();
    for (auto& [id, each] : _cases) {
      if (!each.endedAt) {
        _fault(id, "has not ended");
        continue;
      }
      _judgeSound(each);
      _judgeOrder(each);
    }
    const std::string& history = _platform.session->history;
    for (std::size_t i = 0; i < history.size(); ++i) {
      if (history[i] != (i % 2 == 0 ? '+' : '-')) _fault(0, "session: " + history);
    }
    if (history.size() % 2 != 0) _fault(0, "the session stays active: " + history);
    if (_platform.soundsWithoutSession > 0) _fault(0, "sound began without the session");
  }

 private:
  static constexpr double kRounding = 1e-5;

  void _fault(AnnouncementId id, const std::string& text) {
    faults.push_back(std::to_string(_platform.clock->now()) + ": " + std::to_string(id) + " " +
                     text);
  }
  void _disturb() { _disturbedAt = _platform.clock->now(); }
  // Whether the sound may have stood still since `time`.
  bool _isDisturbedSince(double time) const { return _disturbedAt && *_disturbedAt >= time; }

  Case* _case(AnnouncementId id) {
    const auto found = _cases.find(id);
    if (found == _cases.end()) _fault(id, "is reported and was never said");
    return found == _cases.end() ? nullptr : &found->second;
  }

  // The items that were made for the recording, in order.
  std::vector<const FakePlayerItem*> _itemsOf(const std::string& recording) const {
    std::vector<const FakePlayerItem*> items;
    for (const auto& item : _platform.items()) {
      if (item->path() == "/bundle/Sounds/" + recording + ".aif") items.push_back(item.get());
    }
    return items;
  }

  void _started(AnnouncementId id) {
    Case* const one = _case(id);
    if (!one) return;
    const double now = _platform.clock->now();
    if (one->endedAt) _fault(id, "starts after its end");
    if (one->startedAt) _fault(id, "starts twice");
    one->startedAt = now;
    // Sound that the output has already taken cannot be taken back.
    const double latency = _platform.queue()->latencySeconds();
    if (one->isCancelled && latency == 0) _fault(id, "starts although it was cancelled");
    if (one->deadline && now > *one->deadline + kRounding &&
        !_isDisturbedSince(now - latency - kRounding)) {
      _fault(id, "starts although it has expired");
    }
    for (auto& [otherId, other] : _cases) {
      if (other.id == id || other.endedAt || other.startedAt) continue;
      if (_isDisturbedSince(now - latency - kRounding)) continue;
      if (other.priority > one->priority && other.saidAt < now - latency - kRounding) {
        _fault(id, "goes before the more urgent " + std::to_string(otherId));
      }
      if (other.priority == one->priority && other.takeover == Takeover::wait &&
          one->takeover == Takeover::wait && otherId < id) {
        _fault(id, "goes before the earlier " + std::to_string(otherId));
      }
    }
  }

  void _recording(AnnouncementId id, const SpokenRecording& recording) {
    Case* const one = _case(id);
    if (!one) return;
    if (!one->startedAt || one->endedAt) _fault(id, "sounds outside its time");
    if (recording.name == one->recordings.front()) one->reported = 0;  // begins, or begins again
    if (one->reported >= one->recordings.size() ||
        one->recordings[one->reported] != recording.name) {
      _fault(id, "reports " + recording.name + " out of order");
    }
    ++one->reported;
  }

  void _ended(AnnouncementId id, const AnnouncementEnd& end) {
    Case* const one = _case(id);
    if (!one) return;
    if (one->endedAt) _fault(id, "ends twice");
    const double now = _platform.clock->now();
    one->endedAt = now;
    one->end = end.kind;
    one->cause = end.cause;
    if (!_isAllowed(*one)) _fault(id, "may not end as " + EndRecorder::nameOf(end.kind));
  }

  bool _isAllowed(const Case& one) const {
    switch (one.end) {
      case Kind::finished:
        return one.startedAt && one.reported == one.recordings.size();
      case Kind::interrupted:
        return one.startedAt && std::any_of(_cases.begin(), _cases.end(), [&](const auto& each) {
                 const Case& other = each.second;
                 return other.takeover != Takeover::wait && other.priority >= one.priority &&
                        other.saidAt + kRounding >= *one.startedAt;
               });
      case Kind::replaced:
        return !one.startedAt && std::any_of(_cases.begin(), _cases.end(), [&](const auto& each) {
          const Case& other = each.second;
          return other.id > one.id && other.key == one.key && other.announcer == one.announcer;
        }) && !one.key.empty();
      case Kind::expired:
        return !one.startedAt && one.deadline.has_value();
      case Kind::noLongerValid:
        return !one.startedAt && !one.isValid;
      case Kind::cancelled:
        return one.isCancelled;
      case Kind::unsayable:
        return !one.startedAt && !one.isSayable;
      case Kind::failed:
        break;
      case Kind::stopped:
        return one.isStopped;
    }
    switch (one.cause) {
      case Cause::none:
        return false;
      case Cause::noDevice:
        return !one.startedAt && !_platform.session->hasDevice;
      case Cause::deviceLost:
        return _hasLost;
      case Cause::recordingUnreadable:
      case Cause::recordingTruncated:
        return one.startedAt || one.cause == Cause::recordingUnreadable;
      case Cause::queueFull:
        return !one.startedAt && _waitingWith(one) >= longestQueue.at(one.announcer);
    }
    return false;
  }

  // Those that waited when the announcement failed, the newest included.
  std::size_t _waitingWith(const Case& one) const {
    std::size_t count = 0;
    for (const auto& [id, each] : _cases) {
      count +=
          each.id != one.id && each.announcer == one.announcer && !each.startedAt && !each.endedAt;
    }
    return count;
  }

  // What was heard agrees with the end.
  void _judgeSound(const Case& one) {
    double until = 0;
    std::size_t whole = 0;
    for (std::size_t i = 0; i < one.recordings.size(); ++i) {
      const auto items = _itemsOf(one.recordings[i]);
      const FakePlayerItem* const last = items.empty() ? nullptr : items.back();
      if (!last || !last->heardFrom) continue;
      const bool isWhole = last->currentFate.kind == ItemFate::Kind::heardWhole;
      if (isWhole && whole == i) ++whole;
      if (i > 0 && until > 0 && *last->heardFrom > until + kRounding &&
          !_isDisturbedSince(until - 60)) {
        _fault(one.id, "has a gap before " + one.recordings[i]);
      }
      until = last->heardUntil.value_or(0);
    }
    const bool isHeardWhole = whole == one.recordings.size();
    if (one.end == Kind::finished && !isHeardWhole) _fault(one.id, "was not heard whole");
    if (one.end == Kind::finished && *one.endedAt > until + kRounding) {
      _fault(one.id, "is reported too late");
    }
    const bool mayBeHeard = one.startedAt.has_value() || one.end == Kind::cancelled ||
                            one.end == Kind::stopped || one.end == Kind::failed;
    if (!mayBeHeard && until > 0) _fault(one.id, "was heard and is not reported as started");
  }

  void _judgeOrder(const Case& one) {
    if (one.end == Kind::expired && *one.endedAt + 60 < *one.deadline) {
      _fault(one.id, "expires long before its limit");
    }
  }

  FakePlatform& _platform;
  std::map<AnnouncementId, Case> _cases;
  std::size_t _historySeen = 0;
  bool _isPaused = false;
  bool _hasLost = false;  // at least once
  std::optional<double> _disturbedAt;
};

}  // namespace marlune

#endif  // MARLUNE_TESTS_REFERENCE_ANNOUNCEMENT_JUDGE_H_
