#include "marlune/playback/player.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <future>
#include <memory>
#include <string>
#include <vector>

#include "marlune/testing/fake_audio_session.h"
#include "marlune/testing/fake_main_thread.h"
#include "marlune/testing/fake_queue_player.h"
#include "support/fresh_playback.h"
#include "support/platform_fixture.h"

namespace marlune {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Names = std::vector<std::string>;

// Has every resource except those whose names begin with "no".
class AlmostFullBundle : public ResourceBundle {
 public:
  std::vector<std::string> pathsForResourcesOfType(std::string_view,
                                                   std::string_view) const override {
    return {};
  }
  std::optional<std::string> pathForResource(std::string_view name, std::string_view type,
                                             std::string_view directory) const override {
    if (name.starts_with("no")) return std::nullopt;
    return std::string(directory) + "/" + std::string(name) + "." + std::string(type);
  }
};

class PlayerTest : public PlatformFixture {
 protected:
  void SetUp() override {
    PlatformFixture::SetUp();
    auto& platform = Platform::shared();
    platform.mainThread = mainThread;
    platform.audioSession = session;
    platform.makeQueuePlayer = [this] {
      queues.push_back(std::make_shared<FakeQueuePlayer>());
      return queues.back();
    };
    platform.makePlayerItem = [](const std::string& path) {
      return std::make_shared<FakePlayerItem>(path);
    };
    startPlaybackAfresh();
  }

  void TearDown() override {
    startPlaybackAfresh();
    PlatformFixture::TearDown();
  }

  static std::unique_ptr<Player> makePlayer(std::string directory = "voice") {
    return Player::initWithDirectory(std::move(directory), std::make_shared<AlmostFullBundle>());
  }

  // The queue in use, and the paths of its items.
  FakeQueuePlayer& queue() { return *queues.back(); }
  std::vector<std::string> queued() {
    std::vector<std::string> paths;
    for (const auto& item : queue().items()) paths.push_back(item->path());
    return paths;
  }

  // The lines that `work` writes, with traces on.
  template <typename Work>
  std::vector<std::string> tracesOf(Work work) {
    preferences->set(TQUtilsApplicationTraceDefault, Value::boolean(true));
    log->clear();
    work();
    preferences->set(TQUtilsApplicationTraceDefault, Value::boolean(false));
    return log->lines();
  }

  const std::shared_ptr<FakeMainThread> mainThread = std::make_shared<FakeMainThread>();
  const std::shared_ptr<FakeAudioSession> session = std::make_shared<FakeAudioSession>();
  std::vector<std::shared_ptr<FakeQueuePlayer>> queues;
};

// Keeps its observer after removing it, like a platform that sends a late notification.
class RememberingQueue : public FakeQueuePlayer {
 public:
  void addObserver(QueuePlayerObserver* newObserver, std::string_view keyPath,
                   unsigned options) override {
    observer = newObserver;
    FakeQueuePlayer::addObserver(newObserver, keyPath, options);
  }
  QueuePlayerObserver* observer = nullptr;
};

TEST_F(PlayerTest, ANoticeAboutNoQueueIsIgnored) {
  const auto queue = std::make_shared<RememberingQueue>();
  Platform::shared().makeQueuePlayer = [&] { return queue; };
  Player::initWithDirectory("voice", nullptr)->playSoundFilesInSequence({"a"});
  startPlaybackAfresh();  // now there is no shared queue
  for (const auto keyPath : {QueuePlayer::kCurrentItemKeyPath, QueuePlayer::kStatusKeyPath}) {
    queue->observer->observeValueForKeyPath(keyPath, nullptr);
  }
  mainThread->advance(0);
  EXPECT_EQ(queue->observations(), 0);
}

TEST_F(PlayerTest, ABracedListOfNamesMayBeEmpty) {
  const auto player = Player::initWithDirectory("voice", std::make_shared<AlmostFullBundle>());
  player->playSoundFilesInSequence({});
  EXPECT_EQ(queues.at(0)->timesPlayed, 1);
  player->playSoundFilesInSequence({"a", "b"});
  EXPECT_EQ(queues.at(0)->items().size(), 2u);
}

TEST_F(PlayerTest, AllPlayersFeedOneQueueAndTheFirstSetsTheSessionUp) {
  const auto player = makePlayer("a"), other = makePlayer("b");
  EXPECT_EQ(session->timesCategoryWasSet, 1);
  EXPECT_EQ(session->category, "playback");
  EXPECT_EQ(session->options, 3u);
  EXPECT_EQ(session->history, "");

  player->playSoundFilesInSequence(std::make_shared<const Names>(Names{"five", "miles"}));
  other->playSoundFilesInSequence(Names{"two"});  // follows without a restart
  EXPECT_TRUE(other->isPlaying());
  EXPECT_THAT(queued(), ElementsAre("a/five.aif", "a/miles.aif", "b/two.aif"));
  EXPECT_EQ(queues.size(), 1u);
  EXPECT_FALSE(queue().allowsExternalPlayback);
  EXPECT_EQ(queue().timesPlayed, 1);
  EXPECT_EQ(session->history, "+");
  EXPECT_THAT(log->lines(), IsEmpty());
}

TEST_F(PlayerTest, StepToTheNextFileKeepsTheSessionActive) {
  const auto player = makePlayer();
  player->playSoundFilesInSequence(Names{"one", "two"});
  queue().finishCurrentItem();
  EXPECT_TRUE(player->isPlaying());
  EXPECT_EQ(session->history, "+");
}

TEST_F(PlayerTest, EndOfTheLastFileStopsAndReleasesTheSessionAtOnce) {
  const auto player = makePlayer();
  player->playSoundFilesInSequence(Names{"one"});
  EXPECT_THAT(tracesOf([&] { queue().finishCurrentItem(); }),
              ElementsAre("__nts_indicateEndOfQueuePlayback setting rate to 0, items.count:[0]"));
  EXPECT_EQ(queue().rate(), 0);
  EXPECT_EQ(session->history, "+-");

  player->playSoundFilesInSequence(Names{"two"});
  EXPECT_EQ(session->history, "+-+");
  EXPECT_EQ(queue().timesPlayed, 2);
}

// The queue keeps running when empty. An insertion changes its current item but does not end
// playback.
TEST_F(PlayerTest, ChangeOfCurrentItemDuringAnInsertionIsNoEnd) {
  const auto player = makePlayer();
  player->playSoundFilesInSequence(Names{});
  EXPECT_TRUE(player->isPlaying());
  EXPECT_EQ(session->history, "+");
  struct EmptiesItself : QueuePlayerObserver {
    void observeValueForKeyPath(std::string_view,
                                const std::shared_ptr<QueuePlayer>& object) override {
      object->removeObserver(this, QueuePlayer::kCurrentItemKeyPath);
      object->removeAllItems();  // now the queue is empty while the flag is still set
    }
  } observer;
  queue().addObserver(&observer, QueuePlayer::kCurrentItemKeyPath, QueuePlayer::kNewValue);
  player->playSoundFilesInSequence(Names{"one"});
  EXPECT_EQ(queue().rate(), 1);
  EXPECT_EQ(session->history, "+");

  player->playSoundFilesInSequence(Names{"two"});
  queue().finishCurrentItem();
  EXPECT_EQ(session->history, "+-");
}

TEST_F(PlayerTest, AnEndFromTheQueuesOwnThreadIsHandledOnTheMainThread) {
  const auto player = makePlayer();
  player->playSoundFilesInSequence(Names{"one"});
  auto ended = std::async(std::launch::async, [&] {
    queue().finishCurrentItem();
    return session->history;  // the notification has waited for the main thread
  });
  while (ended.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
    mainThread->runPending();
  }
  EXPECT_EQ(ended.get(), "+-");
}

TEST_F(PlayerTest, TheRateIsCutToAWholeNumberBeforeItCounts) {
  const auto player = makePlayer();
  EXPECT_FALSE(player->isPlaying());  // the call creates the queue
  for (const float stopped : {0.0f, 0.5f, 0.999f, -0.5f, std::nanf("")}) {
    queue().setRate(stopped);
    EXPECT_FALSE(player->isPlaying()) << stopped;
  }
  for (const float playing : {1.0f, 2.5f, -1.0f}) {
    queue().setRate(playing);
    EXPECT_TRUE(player->isPlaying()) << playing;
  }
}

TEST_F(PlayerTest, AtHalfSpeedAStopDoesNothingAndAPhrasePlaysAgain) {
  const auto player = makePlayer();
  player->playSoundFilesInSequence(Names{"one"});
  queue().setRate(0.5f);
  EXPECT_THAT(tracesOf([&] { player->stopAllSounds(); }), ElementsAre("stopAllSounds"));
  mainThread->advance(1);
  EXPECT_THAT(queued(), ElementsAre("voice/one.aif"));
  EXPECT_TRUE(session->isActive);

  player->playSoundFilesInSequence(Names{"two"});
  EXPECT_EQ(queue().timesPlayed, 2);
}

// Destroying a player stops the sound of other players, as stopAllSounds does.
TEST_F(PlayerTest, AStopSilencesAtOnceAndReleasesTheSessionHalfASecondLater) {
  const auto player = makePlayer();
  player->playSoundFilesInSequence(Names{"one", "two"});
  makePlayer("other");
  EXPECT_FALSE(player->isPlaying());
  EXPECT_THAT(queued(), IsEmpty());
  mainThread->advance(0.49);
  EXPECT_EQ(session->history, "+");
  mainThread->advance(0.01);
  EXPECT_EQ(session->history, "+-");
}

TEST_F(PlayerTest, APhraseSoonAfterAStopPlaysOnWhenTheReleaseIsRefused) {
  const auto player = makePlayer();
  session->isSoundRunning = [&] { return queue().rate() != 0; };
  player->playSoundFilesInSequence(Names{"one"});
  player->stopAllSounds();
  player->playSoundFilesInSequence(Names{"two"});
  mainThread->advance(1);
  EXPECT_THAT(log->lines(), ElementsAre("ERROR: Could not set the audio session's active state to "
                                        "0. error: [Sound is running.]"));
  EXPECT_TRUE(player->isPlaying());
  EXPECT_TRUE(session->isActive);
  EXPECT_THAT(queued(), ElementsAre("voice/two.aif"));
}

TEST_F(PlayerTest, NoSequenceLogsALineAndDoesNothing) {
  const auto player = makePlayer();
  EXPECT_THAT(tracesOf([&] { player->playSoundFilesInSequence(nullptr); }),
              ElementsAre("playSoundFilesInSequence - filenames:[(null)]", "No files given."));
  EXPECT_EQ(session->history, "");
  EXPECT_THAT(queues, IsEmpty());
}

TEST_F(PlayerTest, AFileThatIsMissingOrRefusedIsLeftOut) {
  const auto player = makePlayer();
  player->playSoundFilesInSequence(Names{"one", "nowhere", "two"});
  EXPECT_THAT(queued(), ElementsAre("voice/one.aif", "voice/two.aif"));
  queue().refusesItems = true;
  player->playSoundFilesInSequence(Names{"three"});
  EXPECT_THAT(
      log->lines(),
      ElementsAre("ERROR: Could not find \"nowhere.aif.\"",
                  "ERROR: Could not append the player item for \"(null).aif\" to the play queue.",
                  "ERROR: Could not append the player item for \"<item voice/three.aif>.aif\" to "
                  "the play queue."));
  EXPECT_EQ(session->history, "+");
}

TEST_F(PlayerTest, TracesSayWhatIsDoneToTheQueue) {
  const auto player = makePlayer();
  EXPECT_THAT(tracesOf([&] {
                player->playSoundFilesInSequence(Names{"one"});
                player->stopAllSounds();
                mainThread->advance(0.5);
              }),
              ElementsAre("playSoundFilesInSequence - filenames:[(\n    one\n)]",
                          "__sharedPlayQueue creating a new queue player",
                          "_addFileToQueue calling the play queue's insert after nil",
                          "playSoundFilesInSequence calling the play queue's play", "stopAllSounds",
                          "stopAllSounds setting the play queue's rate to 0",
                          "stopAllSounds removing all items from the play queue",
                          "__deactivateAudioSession"));
}

TEST_F(PlayerTest, ADeadQueueIsReplacedOnceAndItsFilesAreDropped) {
  const auto player = makePlayer();
  player->playSoundFilesInSequence(Names{"one"});
  const auto dead = queues.back();
  dead->fail();
  dead->fail();  // both notifications arrive; the first replaces the queue
  EXPECT_EQ(queues.size(), 1u) << "the status is handled later, not in the notification";
  mainThread->runPending();
  mainThread->runPending();  // the new queue has reported its status
  EXPECT_THAT(log->lines(), ElementsAre("__nts_queuePlayerStatusChanged detected that the media "
                                        "service died. Creating a new shared instance of the play "
                                        "queue."));
  ASSERT_EQ(queues.size(), 2u);
  EXPECT_EQ(dead->observations(), 0);
  EXPECT_EQ(session->timesCategoryWasSet, 2);
  EXPECT_FALSE(player->isPlaying());

  player->playSoundFilesInSequence(Names{"two"});
  EXPECT_THAT(queued(), ElementsAre("voice/two.aif"));
  dead->finishCurrentItem();
  dead->notifyLate(QueuePlayer::kCurrentItemKeyPath);  // ignored: the queue has been replaced
  EXPECT_EQ(dead->rate(), 1);
  EXPECT_TRUE(session->isActive);
  queue().finishCurrentItem();  // the new queue is observed
  EXPECT_FALSE(session->isActive);
}

TEST_F(PlayerTest, AStatusThatArrivesAfterItsQueueHasGoneIsIgnored) {
  const auto player = makePlayer();
  player->playSoundFilesInSequence(Names{"one"});
  queues.back()->fail();
  const std::weak_ptr<QueuePlayer> held = queues.back();
  queues.clear();
  startPlaybackAfresh();
  EXPECT_TRUE(held.expired());
  mainThread->runPending();
  EXPECT_THAT(queues, IsEmpty());
}

TEST_F(PlayerTest, SessionFailuresAreLoggedAndPlaybackIsTriedAllTheSame) {
  session->categoryOutcome = {false, "no such category"};
  const auto player = makePlayer();
  session->activationOutcome = {false, "busy"};
  player->playSoundFilesInSequence(Names{"one"});
  EXPECT_TRUE(player->isPlaying());
  session->activationOutcome = {true, "half done"};  // counts as an error, although it reports
                                                     // success
  queue().finishCurrentItem();
  EXPECT_THAT(log->lines(),
              ElementsAre("ERROR: Could not set the options 3 (mix with others, duck others) and "
                          "the category \"playback\" of the audio session. error: [no such "
                          "category]",
                          "ERROR: Could not set the audio session's active state to 1. error: "
                          "[busy]",
                          "ERROR: Could not set the audio session's active state to 0. error: "
                          "[half done]"));
}

TEST_F(PlayerTest, APlatformWithoutAnythingGetsLinesAndNoSound) {
  Platform::shared() = Platform();
  Platform::shared().systemLog = log;
  const auto player = Player::initWithDirectory("voice", nullptr);
  player->playSoundFilesInSequence(Names{"one"});
  EXPECT_FALSE(player->isPlaying());
  player->stopAllSounds();
  const auto lines = log->lines();
  ASSERT_EQ(lines.size(), 4u);
  EXPECT_EQ(lines[1], "ERROR: Could not find \"one.aif.\"");
  EXPECT_EQ(lines[3], "ERROR: The platform has no queue player. Nothing can be played.");
}

TEST_F(PlayerTest, OffTheMainThreadEachOperationLogsALineAndDoesNothing) {
  const auto player = makePlayer();
  player->playSoundFilesInSequence(Names{"one"});
  const struct {
    std::string operation;
    std::function<void()> call;
  } kCases[] = {
      {"playSoundFilesInSequence", [&] { player->playSoundFilesInSequence(Names{"two"}); }},
      {"playSoundFilesInSequence", [&] { player->playSoundFilesInSequence(nullptr); }},
      {"stopAllSounds", [&] { player->stopAllSounds(); }},
      {"stopAllSounds", [&] { makePlayer(); }},  // by its destructor
      {"isPlaying", [&] { EXPECT_FALSE(player->isPlaying()); }},
  };
  for (const auto& c : kCases) {
    log->clear();
    std::async(std::launch::async, c.call).wait();
    EXPECT_THAT(log->lines(), ElementsAre("ERROR: " + c.operation +
                                          " was called off the main thread and does nothing."));
  }
  EXPECT_TRUE(player->isPlaying());
  EXPECT_THAT(queued(), ElementsAre("voice/one.aif"));
  EXPECT_EQ(session->history, "+");
}

TEST_F(PlayerTest, WithoutAMainThreadEveryThreadIsIt) {
  Platform::shared().mainThread = nullptr;
  const auto player = makePlayer();
  player->playSoundFilesInSequence(Names{"one"});
  queue().finishCurrentItem();
  EXPECT_EQ(session->history, "+-");
  queue().fail();
  EXPECT_EQ(queues.size(), 2u);

  player->playSoundFilesInSequence(Names{"two"});
  log->clear();
  player->stopAllSounds();
  EXPECT_THAT(log->lines(), ElementsAre("ERROR: The platform has no main thread. The audio session "
                                        "stays active."));
}

}  // namespace
}  // namespace marlune
