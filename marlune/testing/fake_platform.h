#ifndef MARLUNE_TESTING_FAKE_PLATFORM_H_
#define MARLUNE_TESTING_FAKE_PLATFORM_H_

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "marlune/decompose/decomposer.h"
#include "marlune/platform/platform.h"
#include "marlune/testing/fake_audio_session.h"
#include "marlune/testing/fake_main_thread.h"
#include "marlune/testing/fake_queue_player.h"
#include "marlune/testing/fake_resource_bundle.h"
#include "marlune/testing/virtual_clock.h"

namespace marlune {

// A platform without sound and without time of its own, for tests of an app's announcements. While
// it exists, it is the services of the process, but for the log, the preferences and the reader of
// property lists, which stay as they are.
//
//     FakePlatform platform({"pace", "five"});
//     EndRecorder recorder;
//     const auto announcer = Announcer::initWithParser(
//         nullptr, platform.decomposer(), "Sounds", platform.voice);
//     announcer->setObserver(recorder.observer());
//     const auto id = announcer->say({.words = {"pace", "five"}});
//     platform.clock->advance(2);
//     EXPECT_EQ(recorder.endOf(id), "finished");
//
// Create and destroy it while there is neither a player nor an announcer. Main thread: the one that
// creates it.
class FakePlatform {
 public:
  // `recordings` are the names of the voice, in the directory "Sounds".
  explicit FakePlatform(std::vector<std::string> recordings, double latencySeconds = 0);
  ~FakePlatform();
  FakePlatform(const FakePlatform&) = delete;
  FakePlatform& operator=(const FakePlatform&) = delete;

  // Of the voice.
  std::unique_ptr<Decomposer> decomposer() const;

  // The shared queue: the last one that was made. Null before the first.
  const std::shared_ptr<FakeQueuePlayer>& queue() const { return _queue; }
  // Every item that was made, in order; a silence has an empty path.
  const std::vector<std::shared_ptr<FakePlayerItem>>& items() const { return _items; }
  void forgetItems() { _items.clear(); }

  // As when the output is unplugged, and plugged in again.
  void loseDevice();
  void returnDevice() { session->hasDevice = true; }

  const std::shared_ptr<VirtualClock> clock = std::make_shared<VirtualClock>();
  const std::shared_ptr<FakeMainThread> mainThread = std::make_shared<FakeMainThread>(clock);
  const std::shared_ptr<FakeAudioSession> session = std::make_shared<FakeAudioSession>();
  const std::shared_ptr<FakeResourceBundle> voice;

  // By name; 1 second for those that are missing.
  std::map<std::string, double> seconds;
  // Recordings that cannot be opened, by name.
  std::map<std::string, std::string> faults;
  // What becomes of recordings that could be opened, by name.
  std::map<std::string, ItemFate> outcomes;
  // Times that sound began while the session was not active.
  int soundsWithoutSession = 0;

 private:
  std::shared_ptr<FakePlayerItem> _item(const std::string& path, double length);

  const double _latencySeconds;
  Platform _former;
  std::shared_ptr<FakeQueuePlayer> _queue;
  std::vector<std::shared_ptr<FakePlayerItem>> _items;
};

}  // namespace marlune

#endif  // MARLUNE_TESTING_FAKE_PLATFORM_H_
