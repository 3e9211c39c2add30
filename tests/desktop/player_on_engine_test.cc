// The player on the queue engine, with a main thread that runs only when the test runs it.

#include <gtest/gtest.h>

#include <future>
#include <thread>

#include "marlune/desktop/desktop_platform.h"
#include "marlune/desktop/services/folder_bundle.h"
#include "marlune/desktop/services/run_loop.h"
#include "marlune/playback/audio_session.h"
#include "marlune/playback/player.h"
#include "marlune/testing/fake_main_thread.h"
#include "support/engine_rig.h"
#include "support/fresh_playback.h"
#include "support/platform_fixture.h"

namespace marlune {
namespace {

constexpr AudioFormat kMono = {22'050, 1};
using Names = std::vector<std::string>;

class PlayerOnEngineTest : public PlatformFixture {
 protected:
  void SetUp() override {
    PlatformFixture::SetUp();
    Platform& platform = Platform::shared();
    platform.mainThread = mainThread;
    installDesktopAudio(output);
    platform.makeQueuePlayer = [this, make = platform.makeQueuePlayer] {
      auto queue = make();
      queues.push_back(queue);
      return queue;
    };
    startPlaybackAfresh();
    for (const char* const name : {"one", "two"}) {
      const auto samples = countingSamples(3'000, recorded.size());
      recorded.insert(recorded.end(), samples.begin(), samples.end());
      folder.write(std::string(name) + ".aif", samples, kMono);
    }
    player = Player::initWithDirectory("", std::make_shared<FolderBundle>(folder.path(".")));
  }

  // Lets pending notifications finish.
  void TearDown() override {
    player.reset();
    startPlaybackAfresh();
    for (const auto& queue : queues) {
      while (!queue.expired()) runMainThread();
    }
    PlatformFixture::TearDown();
  }

  void runMainThread() {
    mainThread->runPending();
    std::this_thread::yield();
  }

  // Runs the main thread until every change of the queue has been delivered.
  void settle() {
    const auto queue = std::static_pointer_cast<DesktopQueuePlayer>(queues.back().lock());
    const auto settled = std::async(std::launch::async, [&] { queue->waitUntilSettled(); });
    while (settled.wait_for(std::chrono::seconds(0)) != std::future_status::ready) runMainThread();
  }

  // Cranks the output, without running the main thread, until `frames` frames of sound have come
  // out. Ends early if the output is closed.
  std::vector<short> hear(std::size_t frames) {
    std::vector<short> heard;
    std::vector<float> some(100);
    while (heard.size() < frames && output->isOpen()) {
      const std::size_t sounding = output->crankInto(some.data(), some.size());
      for (std::size_t i = 0; i < sounding; ++i) {
        heard.push_back(static_cast<short>(std::lrintf(some[i] * 32'768.0f)));
      }
      std::this_thread::yield();
    }
    return heard;
  }

  const std::shared_ptr<FakeMainThread> mainThread = std::make_shared<FakeMainThread>();
  const std::shared_ptr<CrankedOutput> output = std::make_shared<CrankedOutput>(kMono);
  RecordingFolder folder;
  std::vector<short> recorded;
  std::vector<std::weak_ptr<QueuePlayer>> queues;
  std::unique_ptr<Player> player;
};

TEST_F(PlayerOnEngineTest, APhraseSoundsWholeWhileTheMainThreadSleeps) {
  player->playSoundFilesInSequence(Names{"one", "two"});
  EXPECT_EQ(hear(recorded.size()), recorded);
  EXPECT_TRUE(player->isPlaying()) << "the end of the queue is handled on the main thread";
  while (player->isPlaying()) runMainThread();
  EXPECT_FALSE(output->isOpen());
}

TEST_F(PlayerOnEngineTest, APhraseAfterALateReleaseOfTheSessionOpensTheOutputAgain) {
  for (const Names& nothing : {Names{}, Names{"nowhere"}}) {
    player->playSoundFilesInSequence(Names{"one"});
    player->stopAllSounds();
    settle();
    player->playSoundFilesInSequence(nothing);
    mainThread->advance(0.5);
    EXPECT_TRUE(player->isPlaying());
    EXPECT_FALSE(output->isOpen());

    output->crank(100);
    player->playSoundFilesInSequence(Names{"one", "two"});
    EXPECT_EQ(output->role(), "announce");
    EXPECT_EQ(hear(recorded.size()), recorded);
    while (player->isPlaying()) runMainThread();
    EXPECT_FALSE(output->isOpen());
  }
}

TEST_F(PlayerOnEngineTest, ARefusalToOpenTheOutputAgainIsTheCauseOfTheFailure) {
  player->playSoundFilesInSequence(Names{});
  Platform::shared().audioSession->setActive(false);
  output->refuse("There is no device.");
  player->playSoundFilesInSequence(Names{"one"});
  settle();
  EXPECT_FALSE(player->isPlaying());
  EXPECT_TRUE(
      log->contains("ERROR: The play queue has failed: There is no device. Sound files "
                    "dropped: 1."));
}

TEST_F(PlayerOnEngineTest, WithoutAMainThreadNoQueueIsMadeAndTheDesktopBringsOne) {
  startPlaybackAfresh();
  Platform::shared().mainThread = nullptr;
  queues.clear();
  EXPECT_FALSE(player->isPlaying());
  EXPECT_FALSE(player->isPlaying());
  EXPECT_EQ(log->lines(),
            std::vector<std::string>{"ERROR: The platform has no main thread. No queue "
                                     "player is made."});
  const auto loop = installDesktopServices();
  ASSERT_NE(loop, nullptr);
  EXPECT_EQ(Platform::shared().mainThread, loop);
  player->playSoundFilesInSequence(Names{"one"});
  hear(3'000);
  while (player->isPlaying()) {
    loop->waitFor(1);
    loop->runPending();
  }
  loop->end();  // a notification may wait for it
  Platform::shared().mainThread = mainThread;
  EXPECT_EQ(installDesktopServices(), nullptr) << "the app's own is no run loop";
  EXPECT_EQ(Platform::shared().mainThread, mainThread);
}

}  // namespace
}  // namespace marlune
