#ifndef MARLUNE_TESTS_SUPPORT_HEARD_ANNOUNCEMENTS_H_
#define MARLUNE_TESTS_SUPPORT_HEARD_ANNOUNCEMENTS_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "marlune/announce/announcer.h"
#include "marlune/desktop/desktop_platform.h"
#include "marlune/desktop/services/boot_clock.h"
#include "marlune/desktop/services/folder_bundle.h"
#include "marlune/desktop/services/run_loop.h"
#include "marlune/platform/platform.h"
#include "marlune/testing/end_recorder.h"
#include "support/fresh_playback.h"
#include "support/recordings.h"

namespace marlune {

// Time that runs faster, for an output that does: a clock and the main thread's timers.
class FastClock : public Clock {
 public:
  explicit FastClock(double speed) : _speed(speed) {}
  double now() const override { return _clock.now() * _speed; }

 private:
  const BootClock _clock;
  const double _speed;
};

class FastMainThread : public MainThread {
 public:
  FastMainThread(std::shared_ptr<RunLoop> loop, double speed)
      : _loop(std::move(loop)), _speed(speed) {}
  bool isCurrent() const override { return _loop->isCurrent(); }
  bool runAndWait(const std::function<void()>& work) override { return _loop->runAndWait(work); }
  void post(std::function<void()> work) override { _loop->post(std::move(work)); }
  void postAfter(double seconds, std::function<void()> work) override {
    _loop->postAfter(seconds / _speed, std::move(work));
  }

 private:
  const std::shared_ptr<RunLoop> _loop;
  const double _speed;
};

// Says random announcements on the queue engine, and holds what their ends say against the samples
// that the output took. Each recording has a level of its own, so that it is found in the sound.
class HeardAnnouncements {
 public:
  struct Options {
    AudioFormat format;
    double speed = 1;
    bool pauses = true;          // pausing loses no sound
    std::function<void()> lose;  // null: the output is never lost
  };

  HeardAnnouncements(std::shared_ptr<AudioOutput> output, Options options, std::uint64_t seed)
      : _options(std::move(options)), _random(seed) {
    Platform& platform = Platform::shared();
    platform.clock = std::make_shared<FastClock>(_options.speed);
    platform.mainThread = std::make_shared<FastMainThread>(_loop, _options.speed);
    installDesktopAudio(std::move(output));
    startPlaybackAfresh();
    AnnouncerSettings settings;
    settings.pauseSeconds = 0.05;
    settings.leadInSeconds = 0.02;
    settings.holdSeconds = 0.3;
    settings.longestQueue = 4;
    _writeVoice();
    _announcer = Announcer::initWithParser(nullptr, Decomposer::initWithDirectory("", _bundle), "",
                                           _bundle, settings);
    _announcer->setObserver(_recorder.observer());
  }
  ~HeardAnnouncements() {
    _announcer.reset();
    startPlaybackAfresh();
    run(0.05);
  }

  // Says `count` announcements, at most as many as there are recordings for, and waits for their
  // ends.
  void say(std::size_t count) {
    for (std::size_t i = 0; i < count && _cases.size() < kAnnouncements; ++i) _act();
    _announcer->resume();
    for (int i = 0; i < 10'000 && _hasPending(); ++i) run(0.02);
    run(0.5);  // until the output has been released
  }

  // Runs the main thread for so many seconds of the clock.
  void run(double seconds) {
    const auto& clock = *Platform::shared().clock;
    for (const double until = clock.now() + seconds; clock.now() < until;) {
      _loop->runPending();
      _loop->waitFor(std::max((until - clock.now()) / _options.speed, 0.0));
    }
    _loop->runPending();
  }

  // What the ends and `samples`, everything that the output took, do not agree on.
  std::vector<std::string> faults(const std::vector<short>& samples) const {
    std::vector<std::string> faults;
    const std::vector<Run> runs = _runsIn(samples);
    for (const auto& each : _cases) {
      const std::size_t number = each.second;
      const std::string end = _recorder.endOf(each.first);
      const bool isWhole = _isHeardWhole(number, runs);
      const bool isHeard = _isHeard(number, runs);
      const auto add = [&](const std::string& text) {
        faults.push_back(std::to_string(each.first) + " (" + end + ") " + text);
      };
      if (end == "finished" && !isWhole) add("was not heard whole, without a gap");
      if (end != "finished" && isWhole) add("was heard whole");
      const bool isUnbegun = end == "expired" || end == "replaced" || end == "unsayable";
      // The output may be lost just when it has begun, and it then waits again.
      if (isUnbegun && isHeard && !_options.lose) add("was heard");
      if (end.empty() || end.find(' ') != std::string::npos) add("has not ended once");
    }
    return faults;
  }

  const EndRecorder& recorder() const { return _recorder; }
  std::size_t countOf(const std::string& end) const {
    std::size_t count = 0;
    for (const auto& [id, number] : _cases) count += _recorder.endOf(id) == end;
    return count;
  }

 private:
  static constexpr std::size_t kAnnouncements = 60;
  static constexpr std::size_t kWords = 2;
  static constexpr std::size_t kLeast = 4;  // a fade has no two frames alike

  struct Run {
    short level;
    std::size_t frames;
  };

  static std::string _name(std::size_t number, std::size_t word) {
    return "w" + std::to_string(number) + "x" + std::to_string(word);
  }
  static short _level(std::size_t number, std::size_t word) {
    return static_cast<short>(2'000 + 200 * (number * kWords + word));
  }
  std::size_t _frames(std::size_t number, std::size_t word) const {
    const auto rate = static_cast<std::size_t>(_options.format.sampleRate);
    return rate / 20 + (number * 7 + word * 3) % 10 * rate / 40;  // 50 to 275 ms
  }

  void _writeVoice() {
    for (std::size_t number = 0; number < kAnnouncements; ++number) {
      for (std::size_t word = 0; word < kWords; ++word) {
        const std::size_t count =
            _frames(number, word) * static_cast<std::size_t>(_options.format.channels);
        _folder.write(_name(number, word) + ".aif", std::vector<short>(count, _level(number, word)),
                      _options.format);
      }
    }
    _bundle = std::make_shared<FolderBundle>(_folder.path("."));
  }

  std::size_t _below(std::size_t count) { return static_cast<std::size_t>(_random() % count); }

  void _act() {
    using Takeover = Announcement::Takeover;
    const std::size_t number = _cases.size();
    Announcement content;
    for (std::size_t word = 0; word < kWords; ++word) content.words.push_back(_name(number, word));
    if (_below(15) == 0) content.words.push_back("unknown");
    content.priority = static_cast<int>(_below(3));
    content.takeover = std::vector{Takeover::wait, Takeover::wait, Takeover::afterRecording,
                                   Takeover::atOnce}[_below(4)];
    if (_below(4) == 0) content.startWithin = 0.1 * static_cast<double>(_below(8));
    if (_below(4) == 0) content.key = "pace";
    _cases[_announcer->say(std::move(content))] = number;
    run(0.01 * static_cast<double>(_below(40)));
    if (_below(8) == 0) _announcer->cancel(_cases.rbegin()->first);
    if (_below(25) == 0) _announcer->stop();
    if (_options.pauses && _below(10) == 0) {
      _announcer->pause();
      run(0.01 * static_cast<double>(_below(30)));
      _announcer->resume();
    }
    if (_options.lose && _below(12) == 0) _options.lose();
  }

  bool _hasPending() const {
    return std::any_of(_cases.begin(), _cases.end(),
                       [this](const auto& each) { return _recorder.endOf(each.first).empty(); });
  }

  // Runs of equal samples; silence within a run, as in a pause, is left out.
  std::vector<Run> _runsIn(const std::vector<short>& samples) const {
    std::vector<Run> runs;
    for (std::size_t i = 0; i < samples.size();) {
      std::size_t end = i;
      while (end < samples.size() && samples[end] == samples[i]) ++end;
      const bool isSound = samples[i] != 0 && end - i >= kLeast;
      if (isSound) {
        if (_options.pauses && !runs.empty() && runs.back().level == samples[i]) {
          runs.back().frames += end - i;
        } else {
          runs.push_back({samples[i], end - i});
        }
      } else if (!_options.pauses || samples[i] != 0) {
        runs.push_back({0, end - i});
      }
      i = end;
    }
    return runs;
  }

  bool _isHeardWhole(std::size_t number, const std::vector<Run>& runs) const {
    for (std::size_t i = 0; i + kWords <= runs.size(); ++i) {
      bool isWhole = true;
      for (std::size_t word = 0; word < kWords && isWhole; ++word) {
        const Run& run = runs[i + word];
        // What was heard before the output was lost in the first recording is in the same run.
        const bool mayBeMore = word == 0 && _options.lose;
        isWhole =
            run.level == _level(number, word) &&
            (mayBeMore ? run.frames >= _frames(number, word) : run.frames == _frames(number, word));
      }
      if (isWhole) return true;
    }
    return false;
  }
  bool _isHeard(std::size_t number, const std::vector<Run>& runs) const {
    return std::any_of(runs.begin(), runs.end(), [&](const Run& run) {
      return run.level >= _level(number, 0) && run.level <= _level(number, kWords - 1);
    });
  }

  const Options _options;
  std::mt19937_64 _random;
  const RecordingFolder _folder{};
  const std::shared_ptr<RunLoop> _loop = std::make_shared<RunLoop>();
  std::shared_ptr<FolderBundle> _bundle;
  EndRecorder _recorder;
  std::map<AnnouncementId, std::size_t> _cases;  // and the number of its recordings
  std::unique_ptr<Announcer> _announcer;
};

}  // namespace marlune

#endif  // MARLUNE_TESTS_SUPPORT_HEARD_ANNOUNCEMENTS_H_
