// The queue engine on a CrankedOutput.

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <span>
#include <thread>

#include "support/engine_rig.h"
#include "support/platform_fixture.h"

namespace marlune {
namespace {

constexpr AudioFormat kMono = {22'050, 1};
using Samples = std::vector<short>;

// Blocks the queue's worker when it logs its first line, as it does for a broken recording.
class HoldingLog : public SystemLog {
 public:
  explicit HoldingLog(std::shared_ptr<SystemLog> next) : _next(std::move(next)) {
    Platform::shared().systemLog = std::shared_ptr<SystemLog>(this, [](SystemLog*) {});
  }
  ~HoldingLog() override { Platform::shared().systemLog = _next; }
  void write(std::string_view message) noexcept override {
    if (!_hasHeld.exchange(true)) {
      _held.count_down();
      _release.wait();
    }
    _next->write(message);
  }
  void waitUntilHeld() { _held.wait(); }
  void release() { _release.count_down(); }

 private:
  const std::shared_ptr<SystemLog> _next;
  std::atomic<bool> _hasHeld = false;
  std::latch _held{1}, _release{1};
};

class QueueEngineTest : public PlatformFixture {
 protected:
  std::string record(std::size_t frames) {
    const Samples samples = countingSamples(frames, recorded.size());
    recorded.insert(recorded.end(), samples.begin(), samples.end());
    return folder.write(std::to_string(recorded.size()) + ".aif", samples, kMono);
  }
  bool hasLineWith(std::string_view text) const {
    for (const std::string& line : log->lines()) {
      if (line.find(text) != std::string::npos) return true;
    }
    return false;
  }

  RecordingFolder folder;
  EngineRig rig;
  Samples recorded;  // everything taken so far, in order
  std::shared_ptr<DesktopQueuePlayer> queue = rig.makeQueue();
};

TEST_F(QueueEngineTest, JoinsRecordingsSampleToSample) {
  for (const std::size_t frames : {1u, 5'000u, 2'048u, 2'049u, 300u, 1u, 9'000u}) {
    rig.append(*queue, record(frames));
  }
  rig.session.setActive(true);
  queue->play();
  Samples heard;
  while (!queue->items().empty()) {
    const Samples more = rig.crank(*queue, 777);
    heard.insert(heard.end(), more.begin(), more.end());
  }
  ASSERT_GE(heard.size(), recorded.size());
  const Samples silence(heard.size() - recorded.size());
  EXPECT_LT(silence.size(), 777u);
  recorded.insert(recorded.end(), silence.begin(), silence.end());
  EXPECT_EQ(heard, recorded);
  EXPECT_FALSE(hasLineWith("Decoding was late"));
}

TEST_F(QueueEngineTest, AnItemEndsWithItsLastFrameAndWhatIsAppendedThenJoins) {
  const auto first = rig.append(*queue, record(100));
  rig.session.setActive(true);
  queue->play();
  rig.crank(*queue, 99);
  EXPECT_EQ(queue->currentItem(), first);
  const auto second = rig.append(*queue, record(50));
  EXPECT_EQ(rig.crank(*queue, 1), Samples(1, recorded[99]));
  EXPECT_EQ(queue->currentItem(), second);
  EXPECT_EQ(rig.crank(*queue, 50), Samples(recorded.begin() + 100, recorded.end()));
  EXPECT_EQ(queue->currentItem(), nullptr);
  EXPECT_EQ(queue->rate(), 1);
}

TEST_F(QueueEngineTest, AnItemEndsWhenTheOutputHasMadeItHeard) {
  rig.output->setLatencyFrames(30);
  const auto item = rig.append(*queue, record(100));
  rig.session.setActive(true);
  queue->play();
  rig.crank(*queue, 129);
  EXPECT_EQ(queue->currentItem(), item);
  rig.crank(*queue, 1);
  EXPECT_EQ(queue->currentItem(), nullptr);
}

// The recordings are short, so that all of them have been decoded and sent when some are removed.
TEST_F(QueueEngineTest, WhatIsRemovedIsNotHeardAndTheRestJoins) {
  std::vector<std::shared_ptr<PlayerItem>> items;
  for (int i = 0; i < 5; ++i) items.push_back(rig.append(*queue, record(100)));
  rig.session.setActive(true);
  queue->play();
  rig.crank(*queue, 40);
  EXPECT_TRUE(queue->removeUnbegun(std::span(items).subspan(1, 2)));
  rig.append(*queue, record(10));
  Samples expected(recorded.begin() + 40, recorded.begin() + 100);
  expected.insert(expected.end(), recorded.begin() + 300, recorded.end());
  EXPECT_EQ(rig.crank(*queue, expected.size()), expected);
  EXPECT_EQ(queue->currentItem(), nullptr);
  EXPECT_FALSE(hasLineWith("Decoding was late"));
}

TEST_F(QueueEngineTest, AnItemThatIsEndedEarlyFadesAndTheNextFollowsAtOnce) {
  rig.output->setLatencyFrames(50);
  const std::string loud = folder.write("loud.aif", Samples(50'000, 16'000), kMono);
  const auto first = rig.append(*queue, loud);
  const auto second = rig.append(*queue, record(10));
  rig.session.setActive(true);
  queue->play();
  rig.crank(*queue, 100);
  EXPECT_TRUE(queue->endEarly(first.get(), 0.01));  // 220.5 frames
  const Samples faded = rig.crank(*queue, 221);
  EXPECT_EQ(faded.front(), 16'000);
  for (std::size_t i = 1; i < faded.size(); ++i) {
    ASSERT_LE(faded[i - 1] - faded[i], 75) << "no step in the fade, at frame " << i;
    ASSERT_GE(faded[i - 1], faded[i]);
  }
  EXPECT_LT(faded.back(), 150);
  EXPECT_EQ(rig.crank(*queue, 10), recorded);
  EXPECT_EQ(queue->currentItem(), first) << "the output's latency has not passed";
  EXPECT_NEAR(first->seconds().value(), 100 / 22'050.0 + 0.01, 1e-6);
  rig.crank(*queue, 50);
  EXPECT_EQ(first->fate(), ItemFate::dropped("it was ended early"));
  EXPECT_EQ(second->fate(), ItemFate::heard(0));
}

TEST_F(QueueEngineTest, ASilenceLastsAsLongAsItSaysInTheRecordingsFormat) {
  const auto silence = FilePlayerItem::silence(0.1);
  queue->insert(silence, nullptr);
  rig.append(*queue, record(10));
  rig.session.setActive(true);
  queue->play();
  EXPECT_EQ(rig.crank(*queue, 2'205), Samples(2'205));
  EXPECT_EQ(silence->fate(), ItemFate::heard(0));
  EXPECT_EQ(rig.crank(*queue, 10), recorded);
}

TEST_F(QueueEngineTest, ReportsHowMuchWasHeardLatencyIncluded) {
  rig.output->setLatencyFrames(2'205);
  rig.append(*queue, record(22'050));
  EXPECT_EQ(queue->secondsHeard(), 0);
  rig.session.setActive(true);
  queue->play();
  rig.crank(*queue, 441);
  EXPECT_NEAR(queue->latencySeconds(), 0.1, 1e-9);
  EXPECT_NEAR(queue->secondsHeard().value(), 0.02 - 0.1, 1e-9);
  rig.crank(*queue, 2'205);
  EXPECT_NEAR(queue->secondsHeard().value(), 0.02, 1e-9);
  queue->setRate(0);
  rig.crank(*queue, 22'050);
  EXPECT_NEAR(queue->secondsHeard().value(), 0.12, 1e-9) << "what was taken, and no more";
}

TEST_F(QueueEngineTest, ChangesTheVolumeWithoutAStep) {
  rig.append(*queue, folder.write("loud.aif", Samples(1'000, 16'000), kMono));
  rig.session.setActive(true);
  queue->play();
  EXPECT_EQ(rig.crank(*queue, 100), Samples(100, 16'000));
  queue->setVolume(0.5f);
  const Samples changing = rig.crank(*queue, 100);
  EXPECT_NEAR(changing.front(), 16'000, 100);
  EXPECT_NEAR(changing[49], 12'000, 100);
  EXPECT_EQ(changing.back(), 8'000);
  EXPECT_EQ(rig.crank(*queue, 100), Samples(100, 8'000));
}

TEST_F(QueueEngineTest, ARateOfZeroPausesAndAnyOtherPlaysAtNormalSpeed) {
  rig.append(*queue, record(100));
  rig.session.setActive(true);
  queue->setRate(0.5f);
  EXPECT_EQ(rig.crank(*queue, 40), Samples(recorded.begin(), recorded.begin() + 40));
  queue->setRate(0);
  EXPECT_EQ(rig.crank(*queue, 40), Samples(40));
  queue->play();
  EXPECT_EQ(rig.crank(*queue, 60), Samples(recorded.begin() + 40, recorded.end()));
}

TEST_F(QueueEngineTest, WhatIsRemovedFallsSilentAtOnceAndWhatComesAfterPlays) {
  rig.append(*queue, record(5'000));
  rig.append(*queue, record(5'000));
  rig.session.setActive(true);
  queue->play();
  rig.crank(*queue, 10);
  queue->removeAllItems();
  EXPECT_EQ(rig.output->crank(10), std::vector<float>(10));
  recorded.clear();
  rig.append(*queue, record(10));
  EXPECT_EQ(rig.crank(*queue, 10), recorded);
}

TEST_F(QueueEngineTest, UnplayableRecordingsAreLeftOutWithoutAGap) {
  const std::string good = record(100);
  const std::vector<char> bytes = readBytes(good);
  std::vector<char> fast = bytes;
  fast[28] = 0x40, fast[29] = 0x1D;  // exponent of the sample rate
  std::filesystem::create_directory(folder.path("folder.aif"));
  const struct {
    std::string path;
    std::string_view cause;
  } kCases[] = {
      {folder.path("missing.aif"), "No such file"},
      {folder.path("folder.aif"), "not a regular file"},
      {folder.writeBytes("empty.aif", {}), "it is empty"},
      {folder.writeBytes("text.aif", std::vector<char>(500, 'x')), "it is not an AIFF file"},
      {folder.write("wave.aif", {1, 2}, kMono, SF_FORMAT_WAV | SF_FORMAT_PCM_16),
       "not an AIFF file"},
      {folder.write("silent.aif", {}, kMono), "it contains no sound"},
      {folder.writeBytes("fast.aif", fast), "its sample rate is"},
      {folder.write("wide.aif", Samples(9), {22'050, 9}), "it has 9 channels"},
  };
  rig.append(*queue, good);
  for (const auto& c : kCases) rig.append(*queue, c.path);
  const auto last = rig.append(*queue, record(100));
  rig.session.setActive(true);
  queue->play();
  EXPECT_EQ(rig.crank(*queue, 200), recorded);
  EXPECT_EQ(log->lines().size(), std::size(kCases));
  for (const auto& c : kCases) {
    EXPECT_TRUE(hasLineWith("\"" + c.path + "\"")) << c.path;
    EXPECT_TRUE(hasLineWith(c.cause)) << c.path << " " << c.cause;
  }
}

TEST_F(QueueEngineTest, ATruncatedRecordingPlaysWhatItHolds) {
  std::vector<char> bytes = readBytes(record(100));
  bytes.resize(bytes.size() - 61);  // 30.5 samples
  rig.append(*queue, folder.writeBytes("short.aif", bytes));
  recorded.resize(69);
  rig.append(*queue, record(10));
  rig.session.setActive(true);
  queue->play();
  EXPECT_EQ(rig.crank(*queue, 79), recorded);
  EXPECT_EQ(queue->currentItem(), nullptr);
}

TEST_F(QueueEngineTest, ReadsTheEncodingsOfAifc) {
  const Samples loud = {16'384, -16'384, 8'192, 0};
  rig.session.setActive(true);
  queue->play();
  const int kEncodings[] = {SF_FORMAT_PCM_16 | SF_ENDIAN_LITTLE,
                            SF_FORMAT_PCM_24,
                            SF_FORMAT_PCM_S8,
                            SF_FORMAT_FLOAT,
                            SF_FORMAT_DOUBLE,
                            SF_FORMAT_PCM_32};
  for (const int encoding : kEncodings) {
    SCOPED_TRACE(encoding);
    rig.append(*queue, folder.write(std::to_string(encoding) + ".aifc", loud, kMono,
                                    SF_FORMAT_AIFF | encoding));
    EXPECT_EQ(rig.crank(*queue, 4), loud);
  }
}

TEST_F(QueueEngineTest, ALossFailsTheQueueOnceAndANewOnePlaysOnTheReopenedOutput) {
  const struct {
    std::string_view why, line;
    std::function<void()> lose;
  } kCases[] = {
      {"lost", "It is gone. Sound files dropped: 2.", [&] { rig.output->lose("It is gone."); }},
      {"closed under it", "No sound output is open.", [&] { rig.route->close(); }},
      {"stalled", "stopped taking sound", [&] { rig.output->setStallLimitSeconds(0); }},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    queue = rig.makeQueue();
    rig.append(*queue, record(5'000));
    rig.append(*queue, record(100));
    EXPECT_TRUE(rig.session.setActive(true).succeeded);
    queue->play();
    rig.crank(*queue, 10);
    log->clear();
    c.lose();
    while (!hasLineWith("has failed")) std::this_thread::yield();
    EXPECT_EQ(queue->status(), QueuePlayer::Status::failed);
    EXPECT_EQ(log->lines().size(), 1u);
    EXPECT_TRUE(hasLineWith(c.line));
    EXPECT_TRUE(queue->items().empty());
    EXPECT_EQ(queue->rate(), 0);
    FilePlayerItem item("x.aif");
    EXPECT_FALSE(queue->canInsert(&item, nullptr));

    rig.output->setStallLimitSeconds(1'000);
    const int opened = rig.output->timesOpened();
    queue = rig.makeQueue();
    recorded.clear();
    rig.append(*queue, record(20));
    EXPECT_TRUE(rig.session.setActive(true).succeeded);
    EXPECT_EQ(rig.output->timesOpened(), opened + 1);
    queue->play();
    EXPECT_EQ(rig.crank(*queue, 20), recorded);
  }
}

TEST_F(QueueEngineTest, AnOutputOfAnotherFormatIsFollowed) {
  rig.append(*queue, record(5'000));
  rig.session.setActive(true);
  queue->play();
  rig.crank(*queue, 10);
  queue->setRate(0);
  rig.session.setActive(false);
  rig.output->setFormat({22'050, 2});
  rig.session.setActive(true);
  queue->play();
  Samples expected;
  for (const short sample : Samples(recorded.begin(), recorded.begin() + 10)) {
    expected.insert(expected.end(), 2, sample);
  }
  EXPECT_EQ(rig.crank(*queue, 10), expected) << "the recording starts again";
}

// The output takes frames before the worker can notice that it was reopened.
TEST_F(QueueEngineTest, SoundMadeForAnotherFormatIsMadeAgainAndNeverCountsAsHeard) {
  for (const AudioFormat former : {AudioFormat{22'050, 2}, AudioFormat{44'100, 1}}) {
    SCOPED_TRACE(former.channels);
    HoldingLog holding(log);
    queue = rig.makeQueue();
    recorded.clear();
    rig.output->setFormat(former);
    rig.session.setActive(true);
    const auto first = rig.append(*queue, record(3'000));
    rig.append(*queue, folder.writeBytes("empty.aif", {}));
    const auto last = rig.append(*queue, record(3'000));
    holding.waitUntilHeld();  // with the first recording decoded
    rig.session.setActive(false);
    rig.output->setFormat(kMono);
    rig.session.setActive(true);
    queue->play();
    EXPECT_EQ(rig.output->crank(4'000), std::vector<float>(4'000));
    holding.release();
    EXPECT_EQ(rig.crank(*queue, 6'000), recorded);
    EXPECT_EQ(first->fate(), ItemFate::heard(0));
    EXPECT_EQ(last->fate(), ItemFate::heard(0));
    queue->setRate(0);
    rig.session.setActive(false);
  }
}

// Closing an output drops frames that were taken but not yet heard.
TEST_F(QueueEngineTest, WhatAClosedOutputHadTakenAndNotMadeHeardIsPlayedAgain) {
  rig.output->setLatencyFrames(30);
  const struct {
    std::string_view why;
    std::size_t frames;
    bool isHeard;
  } kCases[] = {
      {"half of it taken", 50, false},
      {"all of it taken", 129, false},
      {"all of it heard", 130, true},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    recorded.clear();
    const auto item = rig.append(*queue, record(100));
    rig.session.setActive(true);
    queue->play();
    queue->waitUntilSettled();
    rig.output->crank(c.frames);
    queue->setRate(0);
    rig.session.setActive(false);
    queue->waitUntilSettled();
    rig.session.setActive(true);
    queue->waitUntilSettled();
    queue->play();
    EXPECT_EQ(rig.crank(*queue, 100), c.isHeard ? Samples(100) : recorded);
    rig.crank(*queue, 30);
    EXPECT_EQ(item->fate(), ItemFate::heard(0));
    queue->setRate(0);
    rig.session.setActive(false);
  }
}

TEST_F(QueueEngineTest, TheSessionOpensAndClosesTheOutputButNotWhileSoundIsRunning) {
  EXPECT_FALSE(rig.output->isOpen()) << "a queue opens nothing";
  EXPECT_FALSE(rig.session.setCategory("record", 3).succeeded);
  rig.session.setCategory(AudioSession::kCategoryPlayback, AudioSession::kDuckOthers);
  rig.output->refuse("There is no device.");
  const AudioSession::Outcome refused = rig.session.setActive(true);
  EXPECT_FALSE(refused.succeeded);
  EXPECT_EQ(refused.error, "There is no device.");
  rig.output->stopRefusing();

  EXPECT_TRUE(rig.session.setActive(true).succeeded);
  EXPECT_TRUE(rig.session.setActive(true).succeeded);
  EXPECT_EQ(rig.output->timesOpened(), 1);
  EXPECT_EQ(rig.output->role(), "announce");
  rig.append(*queue, record(100));
  queue->play();
  EXPECT_TRUE(rig.session.setActive(false).error.has_value());
  EXPECT_TRUE(rig.output->isOpen());
  queue->setRate(0);
  EXPECT_TRUE(rig.session.setActive(false).succeeded);
  EXPECT_FALSE(rig.output->isOpen());
  rig.session.setCategory(AudioSession::kCategoryPlayback, 0);
  rig.session.setActive(true);
  EXPECT_EQ(rig.output->role(), "");
}

TEST_F(QueueEngineTest, TheQueueToldLastToPlayIsTheOneHeard) {
  const auto other = rig.makeQueue();
  rig.append(*queue, record(20));
  rig.append(*other, record(20));
  rig.session.setActive(true);
  queue->play();
  other->play();
  queue->waitUntilSettled();
  EXPECT_EQ(rig.crank(*other, 20), Samples(recorded.begin() + 20, recorded.end()));
  queue->play();
  EXPECT_EQ(rig.crank(*queue, 20), Samples(recorded.begin(), recorded.begin() + 20));
}

TEST_F(QueueEngineTest, SilenceInPlaceOfLateSoundIsReported) {
  HoldingLog holding(log);
  rig.append(*queue, record(100));
  rig.append(*queue, folder.writeBytes("empty.aif", {}));
  rig.append(*queue, record(5'000));
  rig.session.setActive(true);
  queue->play();
  holding.waitUntilHeld();  // between the first recording and the last
  rig.output->crank(100);
  EXPECT_EQ(rig.output->crank(1'000), std::vector<float>(1'000));
  holding.release();
  EXPECT_EQ(rig.crank(*queue, 5'000), Samples(recorded.begin() + 100, recorded.end()));
  EXPECT_TRUE(hasLineWith("ERROR: Decoding was late: 1000 frames of silence"));
}

TEST_F(QueueEngineTest, AnItemsFateCanBeReadAfterItHasLeftTheQueue) {
  using Kind = ItemFate::Kind;
  rig.session.setActive(true);
  queue->play();
  const auto heard = rig.append(*queue, record(10));
  const auto broken = rig.append(*queue, folder.writeBytes("empty.aif", {}));
  EXPECT_EQ(FilePlayerItem("x.aif").fate().kind, Kind::pending);
  rig.crank(*queue, 9);
  EXPECT_EQ(heard->fate().kind, Kind::pending);
  rig.crank(*queue, 1);
  const auto removed = rig.append(*queue, record(10));
  queue->removeAllItems();
  const auto failed = rig.append(*queue, record(10));
  rig.output->lose("It is gone.");
  while (!queue->items().empty()) std::this_thread::yield();
  const auto other = rig.makeQueue();
  const auto ended = rig.append(*other, record(10));
  EXPECT_EQ(ended->fate().kind, Kind::pending);
  other->removeAllItems();
  EXPECT_EQ(ended->fate().kind, Kind::dropped);
  queue = rig.makeQueue();
  queue->insert(ended, nullptr);
  EXPECT_EQ(ended->fate().kind, Kind::pending) << "of the last insertion";
  queue.reset();
  const struct {
    const FilePlayerItem& item;
    Kind kind;
    std::string_view message;
  } kCases[] = {
      {*heard, Kind::heardWhole, ""},
      {*broken, Kind::leftOut, "it is empty"},
      {*removed, Kind::dropped, "it was removed from the queue"},
      {*failed, Kind::dropped, "the play queue has failed: It is gone."},
      {*ended, Kind::dropped, "its queue has ended"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.message);
    EXPECT_EQ(c.item.fate().kind, c.kind);
    EXPECT_EQ(c.item.fate().message, c.message);
    EXPECT_FALSE(c.item.isQueued());
  }
  EXPECT_TRUE(hasLineWith("1 of them were dropped"));
}

TEST_F(QueueEngineTest, ARecordingThatIsCutOffPlaysWhatItHoldsAndGetsALine) {
  std::vector<char> bytes =
      readBytes(folder.write("cut.aif", countingSamples(44'100, 0), {22'050, 1}));
  bytes.resize(bytes.size() - 2 * 11'025);
  const std::string path = folder.writeBytes("cut.aif", bytes);
  const auto item =
      std::make_shared<FilePlayerItem>(path, std::move(Recording::open(path).value()));
  std::filesystem::remove(path);  // it is open: nothing opens it again
  queue->insert(item, nullptr);
  rig.session.setActive(true);
  queue->play();
  EXPECT_EQ(rig.crank(*queue, 33'075), countingSamples(33'075, 0));
  EXPECT_EQ(item->fate().missingFrames, 11'025u);
  const std::vector<std::string> expected = {"ERROR: \"" + path +
                                             "\" is cut off: 11025 frames (0.50 s) are missing."};
  EXPECT_EQ(log->lines(), expected);
}

}  // namespace
}  // namespace marlune
