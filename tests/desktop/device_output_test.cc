// The sound device with SDL's dummy driver: checks neither what is heard nor when.

#include "marlune/desktop/audio/device/device_output.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <future>
#include <thread>

#include "marlune/desktop/audio/device/patient_thread.h"
#include "support/engine_rig.h"
#include "support/platform_fixture.h"

namespace marlune {
namespace {

using DeviceOutputTest = PlatformFixture;

TEST_F(DeviceOutputTest, IsRefusedWithoutADriverAndPlaysOnceThereIsOne) {
  const RecordingFolder folder;
  const auto path = folder.write("1.aif", countingSamples(2'000, 0), {22'050, 1});
  const auto route = std::make_shared<AudioRoute>(makeDeviceOutput());
  DesktopAudioSession session(route);
  session.setCategory(AudioSession::kCategoryPlayback, AudioSession::kDuckOthers);

  ::setenv("SDL_AUDIODRIVER", "no such driver", 1);
  const auto refused = session.setActive(true);
  EXPECT_FALSE(refused.succeeded);
  EXPECT_NE(refused.error.value_or("").find("There is no sound device"), std::string::npos);

  ::setenv("SDL_AUDIODRIVER", "dummy", 1);
  for (int opening = 0; opening < 2; ++opening) {
    const auto queue = DesktopQueuePlayer::overRoute(route);
    EXPECT_EQ(session.setActive(true).error, std::nullopt);
    EngineRig::append(*queue, path);
    queue->play();
    while (!queue->items().empty()) std::this_thread::yield();
    EXPECT_EQ(queue->status(), QueuePlayer::Status::readyToPlay);
    EXPECT_EQ(session.setActive(false).error, std::nullopt);
  }
  ::unsetenv("SDL_AUDIODRIVER");
}

TEST(PatientThreadTest, WaitsNoLongerThanItIsToldAndStillDoesTheWork) {
  PatientThread thread;
  const auto end = std::make_shared<std::promise<void>>();
  const auto isDone = std::make_shared<std::atomic<int>>(0);
  EXPECT_FALSE(thread.runWithin(0, [=] { end->get_future().wait(); }));
  EXPECT_FALSE(thread.runWithin(0.001, [=] { ++*isDone; }));
  EXPECT_EQ(*isDone, 0);
  end->set_value();
  EXPECT_TRUE(thread.waitUntilIdle(100));
  EXPECT_EQ(*isDone, 1);
}

}  // namespace
}  // namespace marlune
