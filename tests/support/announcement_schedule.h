#ifndef MARLUNE_TESTS_SUPPORT_ANNOUNCEMENT_SCHEDULE_H_
#define MARLUNE_TESTS_SUPPORT_ANNOUNCEMENT_SCHEDULE_H_

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iostream>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "marlune/playback/player.h"
#include "marlune/testing.h"
#include "reference/announcement_judge.h"

namespace marlune {

// A random schedule of announcements, cancellations, pauses, sleeps, stops and lost devices on a
// virtual clock. Run it once.
class AnnouncementSchedule {
 public:
  // A traced one writes what happens to standard output.
  explicit AnnouncementSchedule(std::uint64_t seed, bool isTraced = false)
      : _isTraced(isTraced),
        _random(seed),
        _platform(_names(), _pick({0.0, 0.05, 0.2})),
        _judge(_platform) {
    for (int i = 0; i < 60; ++i) {
      for (int k = 0; k < 3; ++k) _platform.seconds[_name(i, k)] = _pick({0.05, 0.3, 1.0, 2.5});
    }
    _isDisturbed = _chance(2);
    _hasLosses = _isDisturbed && _chance(2);
    for (int i = 0; i < _below(2) + 1; ++i) _addAnnouncer(i);
  }

  // The faults, which are none if all is well.
  std::vector<std::string> run() {
    const int steps = 5 + _below(35);
    for (int i = 0; i < steps && _said < 60; ++i) {
      _act();
      _advance(_pick({0.0, 0.0, 0.02, 0.25, 0.7, 1.5, 4.0}));
    }
    _settle();
    _judge.judge();
    for (auto& each : _announcers) each.reset();
    return _judge.faults;
  }

  const AnnouncementJudge& judge() const { return _judge; }

 private:
  using Takeover = Announcement::Takeover;
  using Items = std::vector<std::shared_ptr<PlayerItem>>;

  static std::string _name(int announcement, int word) {
    return "w" + std::to_string(announcement) + "x" + std::to_string(word);
  }
  static std::vector<std::string> _names() {
    std::vector<std::string> names;
    for (int i = 0; i < 60; ++i) {
      for (int k = 0; k < 3; ++k) names.push_back(_name(i, k));
    }
    return names;
  }

  int _below(int count) { return static_cast<int>(_random() % static_cast<std::uint64_t>(count)); }
  bool _chance(int oneIn) { return _below(oneIn) == 0; }
  template <typename Number>
  Number _pick(std::initializer_list<Number> choices) {
    return *(choices.begin() + _below(static_cast<int>(choices.size())));
  }

  void _addAnnouncer(int index) {
    AnnouncerSettings settings;
    settings.pauseSeconds = _pick({0.0, 0.1, 0.4});
    settings.leadInSeconds = _pick({0.0, 0.0, 0.3});
    settings.holdSeconds = _pick({0.0, 0.5, 2.0});
    settings.deviceWaitSeconds = _pick({0.0, 1.0, 3.0});
    settings.pausedSessionSeconds = _pick({0.0, 1.0});
    settings.longestQueue = _pick<std::size_t>({1, 3, 8});
    _announcers.push_back(Announcer::initWithParser(nullptr, _platform.decomposer(), "Sounds",
                                                    _platform.voice, settings));
    _announcers.back()->setObserver(_observer());
    _judge.longestQueue[index] = settings.longestQueue;
  }

  template <typename... Parts>
  void _trace(const Parts&... parts) const {
    if (!_isTraced) return;
    std::cout << _platform.clock->now();
    ((std::cout << ' ' << parts), ...);
    std::cout << "  [" << _platform.session->history << "]";
    for (const auto& item : _platform.queue() ? _platform.queue()->items() : Items()) {
      std::cout << " {" << item->path() << " " << item->seconds().value_or(-1) << "}";
    }
    std::cout << std::endl;
  }

  // The judge's observer, traced.
  AnnouncementObserver _observer() {
    AnnouncementObserver judged = _judge.observer();
    if (!_isTraced) return judged;
    return {
        .started = [this, judged](AnnouncementId id) { _trace(id, "started"), judged.started(id); },
        .recording =
            [this, judged](AnnouncementId id, const SpokenRecording& recording) {
              _trace(id, recording.name), judged.recording(id, recording);
            },
        .ended =
            [this, judged](AnnouncementId id, const AnnouncementEnd& end) {
              _trace(id, EndRecorder::nameOf(end.kind), end.message), judged.ended(id, end);
            },
    };
  }

  void _advance(double seconds) {
    _platform.clock->advance(seconds);
    _judge.watchSession();
  }

  void _act() {
    const int act = _below(_isDisturbed ? 16 : 9);
    if (act < 7) {
      _say();
    } else if (act == 7) {
      _cancel();
    } else if (act == 8) {
      if (_chance(3))
        _stop();
      else
        _cancelKey();
    } else {
      _disturb(act);
    }
    _advance(0);  // what say() has caused is reported by posted work
  }

  void _disturb(int act) {
    if (act < 12) {
      if (_chance(2))
        _pause();
      else
        _resume();
    } else if (act == 12) {
      const double seconds = _pick({0.3, 5.0, 100.0});
      _trace("sleep", seconds);
      _judge.sleeps(seconds);
      _platform.clock->sleep(seconds);
    } else if (act == 13) {
      _plainStop();
    } else if (_hasLosses) {
      if (act == 14) {
        _judge.loses();
        _trace("the device is lost");
        _platform.loseDevice();
        if (_chance(2)) _platform.returnDevice();
      } else {
        _trace("the device is back");
        _platform.returnDevice();
      }
    }
  }

  void _say() {
    const int index = _below(static_cast<int>(_announcers.size()));
    const int number = _said++;
    AnnouncementJudge::Case one;
    one.announcer = index;
    Announcement content;
    const int words = 1 + _below(3);
    for (int k = 0; k < words; ++k) one.recordings.push_back(_name(number, k));
    one.isSayable = !_chance(12);
    content.words = one.recordings;
    if (!one.isSayable) content.words.push_back("unknown");
    if (one.isSayable && _chance(6)) {
      content.alternatives = {content.words};
      content.words.push_back("unknown");
    }
    one.priority = content.priority = _pick({0, 0, 0, 1, 2});
    one.takeover = content.takeover =
        _pick({Takeover::wait, Takeover::wait, Takeover::afterRecording, Takeover::atOnce});
    if (_chance(4)) {
      content.wordsWhenDue = [this, said = content.words, takeover = content.takeover] {
        if (takeover == Takeover::wait) _checkMoment();
        return said;
      };
      content.words = {"unknown"};
    }
    if (_chance(3)) content.startWithin = _pick({0.0, 0.1, 0.5, 2.0, 6.0});
    if (_chance(3)) one.key = content.key = _pick({"pace", "time"});
    one.isValid = !_chance(15);
    if (!one.isValid || _chance(4))
      content.isStillValid = [isValid = one.isValid] { return isValid; };
    if (_chance(5) && one.isSayable && !content.wordsWhenDue) {
      const Preparation preparation = _announcers[static_cast<std::size_t>(index)]->prepare(
          content.alternatives.empty() ? content.words : content.alternatives[0]);
      if (preparation.isSayable()) content.prepared = preparation.phrase();
    }
    // The judge must know it before it is reported.
    one.saidAt = _platform.clock->now();
    if (content.startWithin) one.deadline = one.saidAt + *content.startWithin;
    one.id = ++_expectedId;
    if (_expectedId == 1) one.id = _expectedId = _firstId();
    _judge.says(one);
    _trace("say", one.id, "announcer", index, "priority", one.priority, "takeover",
           static_cast<int>(one.takeover), "within", content.startWithin.value_or(-1), "key",
           one.key, one.isSayable ? "" : "unsayable", one.isValid ? "" : "invalid");
    const auto id = _announcers[static_cast<std::size_t>(index)]->say(std::move(content));
    if (id != one.id) _judge.faults.push_back("the ids do not count up");
  }

  // The id that comes next: this process may have said something before.
  AnnouncementId _firstId() {
    const auto probe = Announcer::initWithParser(nullptr, nullptr, "", nullptr);
    return probe->say({}) + 1;
  }

  // Words are asked for at most 300 ms before the announcement that is playing ends.
  void _checkMoment() {
    if (!_platform.queue()) return;
    double left = 0;
    double sum = -_platform.queue()->secondsHeard().value_or(0);
    for (const auto& item : _platform.queue()->items()) {
      sum += item->seconds().value_or(0);
      for (const auto& [id, each] : _judge.cases()) {
        const bool isPlaying = each.startedAt && !each.endedAt;
        for (const std::string& name : each.recordings) {
          if (isPlaying && item->path().find("/" + name + ".") != std::string::npos) left = sum;
        }
      }
    }
    if (left > 0.3 + 1e-5) _judge.faults.push_back("words are asked for too early");
  }

  void _cancel() {
    if (_said == 0) return;
    const AnnouncementId id = _expectedId - static_cast<AnnouncementId>(_below(_said));
    auto& one = _judge.cases().at(id);
    one.isCancelled = !one.endedAt;
    _trace("cancel", id);
    _judge.disturbs();
    _announcers[static_cast<std::size_t>(one.announcer)]->cancel(id);
    _checkEnded(one);
  }

  void _cancelKey() {
    const int index = _below(static_cast<int>(_announcers.size()));
    const std::string key = _pick({"pace", "time"});
    _trace("cancel key", key, "of", index);
    for (auto& [id, each] : _judge.cases()) {
      if (each.announcer == index && each.key == key && !each.endedAt) each.isCancelled = true;
    }
    _judge.disturbs();
    _announcers[static_cast<std::size_t>(index)]->cancelKey(key);
  }

  void _stop() {
    const int index = _below(static_cast<int>(_announcers.size()));
    _trace("stop", index);
    for (auto& [id, each] : _judge.cases()) {
      if (each.announcer == index && !each.endedAt) each.isStopped = true;
    }
    _judge.disturbs();
    _announcers[static_cast<std::size_t>(index)]->stop();
    for (const auto& [id, each] : _judge.cases()) {
      if (each.announcer == index) _checkEnded(each);
    }
  }

  // At once, unless the output has taken what cannot be taken back.
  void _checkEnded(const AnnouncementJudge::Case& one) {
    const bool isOver = one.endedAt || !(one.isCancelled || one.isStopped);
    if (!isOver && (!_platform.queue() || _platform.queue()->latencySeconds() == 0)) {
      _judge.faults.push_back(std::to_string(one.id) + " goes on");
    }
  }

  // A player silences everything that is in the queue.
  void _plainStop() {
    for (auto& [id, each] : _judge.cases()) {
      if (!each.endedAt) each.isStopped = true;
    }
    _judge.disturbs();
    _judge.loses();  // the session is released half a second later, whatever is said then
    _trace("a player stops");
    Player::initWithDirectory("Sounds", _platform.voice)->stopAllSounds();
  }

  void _pause() {
    _trace("pause");
    _judge.pauses(true);
    _announcers.front()->pause();
  }
  void _resume() {
    _trace("resume");
    _judge.pauses(false);
    _announcers.back()->resume();
  }

  // Nothing more arrives, and everything has the time to end.
  void _settle() {
    _platform.returnDevice();
    _resume();
    for (int i = 0; i < 40; ++i) _advance(10);
  }

  const bool _isTraced;
  std::mt19937_64 _random;
  FakePlatform _platform;
  AnnouncementJudge _judge;
  std::vector<std::unique_ptr<Announcer>> _announcers;
  int _said = 0;
  AnnouncementId _expectedId = 0;
  bool _isDisturbed = false;
  bool _hasLosses = false;
};

}  // namespace marlune

#endif  // MARLUNE_TESTS_SUPPORT_ANNOUNCEMENT_SCHEDULE_H_
