#ifndef MARLUNE_TESTS_SUPPORT_ANNOUNCEMENT_THREADS_H_
#define MARLUNE_TESTS_SUPPORT_ANNOUNCEMENT_THREADS_H_

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "marlune/testing.h"

namespace marlune {

// Several threads call announcers at random while the main thread lets time pass. Run it once.
class AnnouncementThreads {
 public:
  explicit AnnouncementThreads(std::uint64_t seed)
      : _seed(seed), _platform({"one", "two", "three"}, 0.05) {
    AnnouncerSettings settings;
    settings.longestQueue = 4;
    settings.holdSeconds = 0.2;
    for (int i = 0; i < 2; ++i) {
      _announcers.push_back(Announcer::initWithParser(nullptr, _platform.decomposer(), "Sounds",
                                                      _platform.voice, settings));
      _announcers.back()->setObserver(_recorder.observer());
    }
  }

  // The faults, which are none if all is well.
  std::vector<std::string> run() {
    std::vector<std::thread> threads;
    std::atomic<int> running = kThreads;
    for (int i = 0; i < kThreads; ++i) {
      threads.emplace_back([this, i, &running] {
        _call(_seed * kThreads + static_cast<std::uint64_t>(i));
        --running;
      });
    }
    while (running > 0) {
      _platform.clock->advance(0.05);
      std::this_thread::yield();
    }
    for (std::thread& each : threads) each.join();
    _announcers[0]->resume();
    for (int i = 0; i < 20; ++i) _platform.clock->advance(5);
    return _faults();
  }

 private:
  static constexpr int kThreads = 3;

  void _call(std::uint64_t seed) {
    std::mt19937_64 random(seed);
    AnnouncementId last = 0;
    for (int i = 0; i < 8; ++i) {
      Announcer& announcer = *_announcers[random() % 2];
      switch (random() % 10) {
        case 0:
          announcer.cancel(last);
          break;
        case 1:
          announcer.cancelKey("key");
          break;
        case 2:
          random() % 2 ? announcer.pause() : announcer.stop();
          break;
        case 3:
          announcer.resume();
          announcer.setVolume(0.5f);
          break;
        case 4:
          announcer.prepare({"one", "unknown"});
          announcer.setSettings(announcer.settings());
          break;
        default:
          last = announcer.say(_any(random));
          const std::lock_guard lock(_mutex);
          _said.push_back(last);
      }
    }
  }

  static Announcement _any(std::mt19937_64& random) {
    using Takeover = Announcement::Takeover;
    Announcement content;
    content.words = {"one", random() % 2 ? "two" : "three"};
    if (random() % 3 == 0) content.wordsWhenDue = [] { return std::vector<std::string>{"two"}; };
    if (random() % 4 == 0) content.startWithin = 1;
    if (random() % 4 == 0) content.key = "key";
    content.priority = static_cast<int>(random() % 2);
    content.takeover = random() % 2 ? Takeover::wait : Takeover::atOnce;
    return content;
  }

  std::vector<std::string> _faults() const {
    std::vector<std::string> faults;
    for (const AnnouncementId id : _said) {
      const auto ends = _recorder.ends.find(id);
      const std::size_t count = ends == _recorder.ends.end() ? 0 : ends->second.size();
      if (count != 1)
        faults.push_back(std::to_string(id) + " has ended " + std::to_string(count) + " times");
    }
    if (_recorder.ends.size() != _said.size()) faults.push_back("ends of what was never said");
    if (_platform.session->isActive) faults.push_back("the session stays active");
    if (_platform.soundsWithoutSession > 0) faults.push_back("sound began without the session");
    return faults;
  }

  const std::uint64_t _seed;
  FakePlatform _platform;
  EndRecorder _recorder;
  std::mutex _mutex;
  std::vector<AnnouncementId> _said;
  std::vector<std::unique_ptr<Announcer>> _announcers;
};

}  // namespace marlune

#endif  // MARLUNE_TESTS_SUPPORT_ANNOUNCEMENT_THREADS_H_
