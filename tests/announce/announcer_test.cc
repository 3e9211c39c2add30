#include "marlune/announce/announcer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "marlune/decompose/decomposer_delegate.h"
#include "marlune/playback/player.h"
#include "marlune/testing.h"
#include "support/platform_fixture.h"

namespace marlune {
namespace {

using testing::ElementsAre;
using Cause = AnnouncementEnd::Cause;
using Takeover = Announcement::Takeover;
using Words = std::vector<std::string>;

// Recordings of one second each, but for "long", which has five.
class AnnouncerTest : public PlatformFixture {
 protected:
  void SetUp() override {
    PlatformFixture::SetUp();
    platform = std::make_unique<FakePlatform>(
        Words{"one", "two", "three", "long", "warning", "pace"}, /*latencySeconds=*/0.05);
    platform->seconds["long"] = 5;
    settings.pauseSeconds = 0;
    makeAnnouncer();
  }

  void TearDown() override {
    announcer.reset();
    platform.reset();
    PlatformFixture::TearDown();
  }

  void makeAnnouncer() {
    announcer = Announcer::initWithParser(nullptr, platform->decomposer(), "Sounds",
                                          platform->voice, settings);
    announcer->setObserver(recorder.observer());
  }

  void advance(double seconds) { platform->clock->advance(seconds); }
  // What was reported by now. What say() has caused is reported by posted work.
  const std::vector<std::string>& lines() const {
    platform->clock->advance(0);
    return recorder.lines;
  }
  std::string end(AnnouncementId id) const {
    platform->clock->advance(0);
    return recorder.endOf(id);
  }
  static std::string line(AnnouncementId id, const std::string& what) {
    return std::to_string(id) + " " + what;
  }
  // In the order in which they started.
  std::vector<AnnouncementId> started() const {
    std::vector<AnnouncementId> ids;
    for (const std::string& each : lines()) {
      if (each.ends_with(" started")) ids.push_back(std::stoull(each));
    }
    return ids;
  }
  Cause cause(AnnouncementId id) const {
    platform->clock->advance(0);
    const auto found = recorder.ends.find(id);
    return found == recorder.ends.end() ? Cause::none : found->second.front().cause;
  }
  std::string history() const { return platform->session->history; }

  std::unique_ptr<FakePlatform> platform;
  EndRecorder recorder;
  AnnouncerSettings settings;
  std::unique_ptr<Announcer> announcer;
};

TEST_F(AnnouncerTest, ReportsEachRecordingAndTheEndWhenItWasHeard) {
  const auto id = announcer->say({.words = {"one", "two"}});
  EXPECT_EQ(history(), "+");
  advance(2.04);
  EXPECT_EQ(end(id), "") << "the output's latency has not passed";
  advance(0.02);
  EXPECT_THAT(lines(), ElementsAre(line(id, "started"), line(id, "one"), line(id, "two"),
                                   line(id, "finished")));
  EXPECT_EQ(history(), "+-");
}

TEST_F(AnnouncerTest, NothingIsReportedBeforeTheIdIsKnown) {
  announcer->say({.words = {"unknown"}});
  announcer->say({.words = {"one"}});
  EXPECT_THAT(recorder.lines, testing::IsEmpty());
  EXPECT_EQ(history(), "+") << "but the sound begins at once";
  EXPECT_EQ(lines().size(), 3u);
}

TEST_F(AnnouncerTest, PrepareShowsHowAPhraseWouldBeSaid) {
  platform->voice->add("five_kilometers");
  platform->seconds["five_kilometers"] = 1.5;
  makeAnnouncer();
  const Preparation preparation = announcer->prepare({"one", "five", "kilometers", "two"});
  ASSERT_TRUE(preparation.isSayable());
  const PreparedPhrase& phrase = *preparation.phrase();
  EXPECT_EQ(phrase.seconds, 3.5);
  std::string text;
  for (const SpokenRecording& each : phrase.recordings) {
    text +=
        each.name + " " + std::to_string(each.firstWord) + "-" + std::to_string(each.endWord) + " ";
  }
  EXPECT_EQ(text, "one 0-1 five_kilometers 1-3 two 3-4 ");
  EXPECT_EQ(history(), "") << "nothing sounds";

  const auto id = announcer->say({.prepared = preparation.phrase()});
  advance(4);
  EXPECT_EQ(end(id), "finished");
}

TEST_F(AnnouncerTest, PrepareNamesWhatIsWrong) {
  using Kind = PhraseProblem::Kind;
  platform->faults["three"] = "it is empty";
  const auto overrides =
      DecomposerDelegate::initWithWholeOverrides({{"one_two", {"gone"}}, {"two_one", {}}}, {});
  auto decomposer = platform->decomposer();
  decomposer->setDelegate(overrides);
  announcer = Announcer::initWithParser(nullptr, std::move(decomposer), "Sounds", platform->voice);
  const struct {
    Words words;
    Kind kind;
    Words concerned;
    std::string_view culprit, message;
  } kCases[] = {
      {{}, Kind::nothingToSay, {}, "", "the phrase has no words"},
      {{"one", "a", "b"}, Kind::uncoveredWords, {"a", "b"}, "", "no recording says \"a b\""},
      {{"two", "three"},
       Kind::unreadable,
       {"three"},
       "three",
       "\"three\" cannot be played: it is empty"},
      {{"one", "two"},
       Kind::missingRecording,
       {"one", "two"},
       "one_two",
       "the override \"one_two\" names \"gone\", which is no recording"},
      {{"two", "one"}, Kind::nothingToSay, {}, "two_one", "an override says nothing"},
      {Words(3'000, "one"), Kind::tooLong, {}, "", "the phrase has too many words"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.message);
    const Preparation preparation = announcer->prepare(c.words);
    ASSERT_FALSE(preparation.isSayable());
    EXPECT_EQ(preparation.problem().kind, c.kind);
    EXPECT_EQ(preparation.problem().words, c.concerned);
    EXPECT_EQ(preparation.problem().culprit, c.culprit);
    EXPECT_EQ(preparation.problem().message, c.message);
  }
}

TEST_F(AnnouncerTest, TriesOtherWordingsInOrder) {
  const auto id =
      announcer->say({.words = {"half", "way"},
                      .alternatives = {{"fifty", "percent"}, {"one", "two"}, {"three"}}});
  const auto none = announcer->say({.words = {"half"}, .alternatives = {{"percent"}}});
  advance(5);
  EXPECT_THAT(lines(), ElementsAre(line(id, "started"), line(id, "one"), line(id, "two"),
                                   line(none, "unsayable"), line(id, "finished")));
  ASSERT_TRUE(recorder.ends[none][0].problem);
  EXPECT_THAT(recorder.ends[none][0].problem->words, ElementsAre("half")) << "the first wording's";
}

TEST_F(AnnouncerTest, AsksForTheWordsAndTheCheckWhenTheTurnComes) {
  std::string asked;
  announcer->say({.words = {"one"}});
  const auto id = announcer->say({
      .wordsWhenDue = [&] { return asked += "words", Words{"two"}; },
      .isStillValid = [&] { return asked += "check ", true; },
  });
  const auto old = announcer->say({.words = {"three"}, .isStillValid = [] { return false; }});
  advance(0.74);
  EXPECT_EQ(asked, "") << "310 ms before the first one ends";
  advance(0.02);
  EXPECT_EQ(asked, "check words");
  advance(3);
  EXPECT_EQ(end(id), "finished");
  EXPECT_EQ(end(old), "no longer valid");
}

TEST_F(AnnouncerTest, SaysTheMoreUrgentFirstAndEqualOnesInOrder) {
  const auto first = announcer->say({.words = {"one"}});
  const auto second = announcer->say({.words = {"two"}});
  const auto third = announcer->say({.words = {"three"}});
  const auto urgent = announcer->say({.words = {"warning"}, .priority = 1});
  advance(6);
  EXPECT_THAT(started(), ElementsAre(first, urgent, second, third));
}

TEST_F(AnnouncerTest, WhatIsQueuedAheadGivesWayAndWaitsAgain) {
  const auto first = announcer->say({.words = {"one"}});
  const auto second = announcer->say({.words = {"two"}});
  advance(0.9);
  EXPECT_EQ(platform->queue()->items().size(), 2u);
  const auto urgent = announcer->say({.words = {"warning"}, .priority = 1});
  advance(5);
  EXPECT_THAT(started(), ElementsAre(first, urgent, second));
  EXPECT_EQ(history(), "+-");
}

TEST_F(AnnouncerTest, ATakeoverAtOnceFadesAndOneAfterTheRecordingWaitsForItsEnd) {
  for (const auto takeover : {Takeover::atOnce, Takeover::afterRecording}) {
    const auto id = announcer->say({.words = {"one", "two", "three"}});
    advance(1.25);  // in the middle of "two"
    const auto warning = announcer->say({.words = {"warning"}, .takeover = takeover});
    advance(takeover == Takeover::atOnce ? 0.02 : 0.74);
    EXPECT_EQ(end(id), takeover == Takeover::atOnce ? "interrupted" : "");
    advance(0.1);
    EXPECT_EQ(end(id), "interrupted");
    EXPECT_THAT(lines(), testing::Contains(line(warning, "started")));
    EXPECT_THAT(lines(), testing::Not(testing::Contains(line(id, "three"))));
    advance(5);
    EXPECT_EQ(end(warning), "finished");
  }
  EXPECT_EQ(history(), "+-+-");
}

TEST_F(AnnouncerTest, ALessUrgentOneDoesNotTakeOver) {
  const auto urgent = announcer->say({.words = {"long"}, .priority = 1});
  const auto id = announcer->say({.words = {"one"}, .takeover = Takeover::atOnce});
  advance(7);
  EXPECT_EQ(end(urgent), "finished");
  EXPECT_EQ(end(id), "finished");
  EXPECT_THAT(started(), ElementsAre(urgent, id));
}

TEST_F(AnnouncerTest, ATakeoverThatCannotBeSaidInterruptsNothing) {
  const auto id = announcer->say({.words = {"long"}});
  const auto bad = announcer->say({.words = {"unknown"}, .takeover = Takeover::atOnce});
  const auto late =
      announcer->say({.words = {"one"}, .takeover = Takeover::atOnce, .startWithin = 0.01});
  EXPECT_EQ(end(bad), "unsayable");
  EXPECT_EQ(end(late), "expired") << "the output's latency is longer";
  advance(6);
  EXPECT_EQ(end(id), "finished");
}

// It is heard 50 ms, the latency, after it is said; at the limit is in time.
TEST_F(AnnouncerTest, StartWithinCountsUntilTheFirstRecordingIsHeard) {
  const auto inTime = announcer->say({.words = {"one"}, .startWithin = 0.05});
  const auto late = announcer->say({.words = {"two"}, .startWithin = 0.999});
  const auto follows = announcer->say({.words = {"two"}, .startWithin = 1.05});
  advance(1.04);
  EXPECT_EQ(end(late), "expired") << "no later than its turn";
  advance(3);
  EXPECT_EQ(end(inTime), "finished");
  EXPECT_EQ(end(follows), "finished");
  settings.leadInSeconds = 0.5;
  announcer->setSettings(settings);
  EXPECT_EQ(end(announcer->say({.words = {"one"}, .startWithin = 0.5})), "expired");
}

TEST_F(AnnouncerTest, WhatIsQueuedAheadIsJudgedAgainAfterASleep) {
  announcer->say({.words = {"one"}});
  const auto id = announcer->say({.words = {"two"}, .startWithin = 5});
  advance(0.9);
  EXPECT_EQ(platform->queue()->items().size(), 2u);
  platform->clock->sleep(60);
  EXPECT_EQ(end(id), "expired");
}

TEST_F(AnnouncerTest, OfOneKeyOnlyTheNewestIsSaid) {
  const auto first = announcer->say({.words = {"one"}});
  const auto old = announcer->say({.words = {"two"}, .key = "pace"});
  advance(0.9);  // it is queued ahead
  const auto fresh = announcer->say({.words = {"three"}, .key = "pace"});
  EXPECT_EQ(end(old), "replaced");
  advance(0.3);
  const auto next = announcer->say({.words = {"pace"}, .key = "pace"});
  advance(4);
  EXPECT_EQ(end(fresh), "finished") << "it had begun";
  EXPECT_THAT(started(), ElementsAre(first, fresh, next));
}

TEST_F(AnnouncerTest, CancelsByIdAndByKeyAndStopsItsOwn) {
  const auto playing = announcer->say({.words = {"long"}});
  const auto waiting = announcer->say({.words = {"one"}});
  const auto keyed = announcer->say({.words = {"one"}, .key = "pace"});
  const auto last = announcer->say({.words = {"two"}});
  announcer->cancelKey("pace");
  announcer->cancel(waiting);
  announcer->cancel(waiting);  // a second time does nothing
  advance(1);
  announcer->cancel(playing);
  EXPECT_EQ(end(keyed) + ", " + end(waiting) + ", " + end(playing),
            "cancelled, cancelled, cancelled");
  advance(0.5);
  announcer->stop();
  EXPECT_EQ(end(last), "stopped");
  EXPECT_EQ(history(), "+");
  advance(0.07);  // fade and latency
  EXPECT_EQ(history(), "+-");
}

TEST_F(AnnouncerTest, ABurstIsDuckedOnceAndHeldForThePhraseThatFollowsSoon) {
  settings.pauseSeconds = 0.3;
  settings.leadInSeconds = 0.5;
  settings.holdSeconds = 2;
  announcer->setSettings(settings);
  const auto first = announcer->say({.words = {"one"}});
  advance(0.54);
  EXPECT_THAT(lines(), testing::IsEmpty()) << "the lead-in";
  advance(2);  // 0.99 s after its end
  EXPECT_EQ(end(first), "finished");
  const auto second = announcer->say({.words = {"two"}});
  advance(0.06);
  EXPECT_THAT(started(), ElementsAre(first, second)) << "no lead-in, and the pause is over";
  const auto third = announcer->say({.words = {"three"}});
  advance(1.2);
  EXPECT_THAT(started(), ElementsAre(first, second)) << "the pause";
  advance(0.2);
  EXPECT_THAT(started(), ElementsAre(first, second, third));
  advance(2.8);
  EXPECT_EQ(history(), "+") << "the hold";
  advance(0.3);
  EXPECT_EQ(history(), "+-");
}

TEST_F(AnnouncerTest, APauseKeepsTheSessionForAWhileInTheMiddleOfAPhraseOnly) {
  settings.pausedSessionSeconds = 2;
  announcer->setSettings(settings);
  const auto id = announcer->say({.words = {"long"}});
  advance(1);
  announcer->pause();
  const auto waiting = announcer->say({.words = {"one"}, .startWithin = 3});
  advance(1.9);
  EXPECT_EQ(history(), "+");
  advance(2);
  EXPECT_EQ(history(), "+-");
  EXPECT_EQ(end(waiting), "expired");
  announcer->resume();
  EXPECT_EQ(history(), "+-+");
  advance(3.9);
  EXPECT_EQ(end(id), "");
  advance(0.2);
  EXPECT_EQ(end(id), "finished");
  announcer->pause();
  const auto later = announcer->say({.words = {"one"}});
  EXPECT_EQ(history(), "+-+-") << "nothing is in its middle";
  advance(60);
  announcer->resume();
  advance(2);
  EXPECT_EQ(end(later), "finished");
}

TEST_F(AnnouncerTest, APhraseStartsAgainWhenALostDeviceIsBackInTime) {
  const auto id = announcer->say({.words = {"one", "two"}, .startWithin = 0.1});
  advance(1.5);
  platform->loseDevice();
  advance(2);
  platform->returnDevice();
  advance(3);
  EXPECT_THAT(lines(), ElementsAre(line(id, "started"), line(id, "one"), line(id, "two"),
                                   line(id, "one"), line(id, "two"), line(id, "finished")));
  EXPECT_FALSE(platform->session->isActive);
}

TEST_F(AnnouncerTest, ADeviceThatDoesNotComeBackFailsThePhraseAndThoseBehindIt) {
  const auto id = announcer->say({.words = {"one", "two"}});
  const auto waiting = announcer->say({.words = {"three"}});
  advance(1.5);
  platform->loseDevice();
  advance(2.9);
  EXPECT_EQ(end(id), "");
  advance(0.2);
  EXPECT_EQ(cause(id), Cause::deviceLost);
  EXPECT_EQ(cause(waiting), Cause::noDevice);
  EXPECT_EQ(recorder.ends[waiting][0].message, "There is no sound device.");
  EXPECT_FALSE(platform->session->isActive);
}

TEST_F(AnnouncerTest, ADeviceThatVanishesDuringAPauseIsWaitedForAfterIt) {
  settings.pausedSessionSeconds = 0;
  announcer->setSettings(settings);
  for (const bool returns : {true, false}) {
    const auto id = announcer->say({.words = {"one", "two"}});
    advance(1.5);
    announcer->pause();
    platform->session->hasDevice = false;
    advance(60);
    announcer->resume();
    advance(2);
    EXPECT_EQ(end(id), "") << "it waits";
    if (returns) platform->returnDevice();
    advance(3);
    EXPECT_EQ(end(id), returns ? "finished" : "failed");
    EXPECT_EQ(cause(id), returns ? Cause::none : Cause::deviceLost);
    EXPECT_FALSE(platform->session->isActive);
  }
}

TEST_F(AnnouncerTest, ADeviceThatIsLostAgainAndAgainFailsThePhrase) {
  const auto id = announcer->say({.words = {"long"}});
  for (int i = 0; i < 10 && end(id).empty(); ++i) {
    advance(1);
    platform->loseDevice();
    platform->returnDevice();
  }
  EXPECT_EQ(cause(id), Cause::deviceLost);
}

TEST_F(AnnouncerTest, ARecordingThatCannotBePlayedFailsItsPhrase) {
  platform->outcomes["two"] = ItemFate::leftOut("it is gone");
  platform->outcomes["three"] = ItemFate::heard(100);
  const auto unreadable = announcer->say({.words = {"one", "two", "one"}});
  const auto truncated = announcer->say({.words = {"three"}});
  advance(6);
  EXPECT_EQ(cause(unreadable), Cause::recordingUnreadable);
  EXPECT_EQ(recorder.ends[unreadable][0].message, "\"two\": it is gone");
  EXPECT_EQ(cause(truncated), Cause::recordingTruncated);
}

TEST_F(AnnouncerTest, UnpluggedHeadphonesPauseOrDoNot) {
  announcer->say({.words = {"long"}});
  platform->session->routeLost();
  EXPECT_TRUE(announcer->isPaused());
  announcer->resume();
  settings.routeLost = AnnouncerSettings::RouteLost::goOn;
  announcer->setSettings(settings);
  platform->session->routeLost();
  EXPECT_FALSE(announcer->isPaused());
}

TEST_F(AnnouncerTest, AFullQueueLosesTheLeastUrgentAndOfTheseTheYoungest) {
  settings.longestQueue = 2;
  announcer->setSettings(settings);
  announcer->say({.words = {"long"}});
  const auto low = announcer->say({.words = {"one"}});
  const auto high = announcer->say({.words = {"two"}, .priority = 1});
  const auto young = announcer->say({.words = {"three"}});
  EXPECT_EQ(cause(young), Cause::queueFull);
  const auto higher = announcer->say({.words = {"warning"}, .priority = 1});
  EXPECT_EQ(cause(low), Cause::queueFull);
  advance(8);
  EXPECT_EQ(end(high) + " " + end(higher), "finished finished");
}

TEST_F(AnnouncerTest, AnnouncersShareOneLineAndEachStopsItsOwn) {
  const auto other = Announcer::initWithParser(nullptr, platform->decomposer(), "Sounds",
                                               platform->voice, settings);
  other->setObserver(recorder.observer());
  const auto first = announcer->say({.words = {"one"}});
  const auto second = announcer->say({.words = {"two"}});
  const auto urgent = other->say({.words = {"warning"}, .priority = 1});
  const auto third = other->say({.words = {"three"}});
  announcer->stop();
  EXPECT_EQ(end(first) + " " + end(second), "stopped stopped");
  advance(5);
  EXPECT_THAT(started(), ElementsAre(first, urgent, third));
  EXPECT_EQ(history(), "+-");
}

TEST_F(AnnouncerTest, AnAnnouncerThatEndsReportsAllEndsBefore) {
  const auto playing = announcer->say({.words = {"long"}});
  const auto waiting = announcer->say({.words = {"one"}});
  announcer.reset();
  EXPECT_EQ(end(playing) + " " + end(waiting), "stopped stopped");
  makeAnnouncer();
  const auto next = announcer->say({.words = {"one"}});
  advance(2);
  EXPECT_EQ(end(next), "finished");

  // Within one of its own functions, too.
  AnnouncementId id = 0;
  id = announcer->say({.wordsWhenDue = [&] {
    announcer.reset();
    return Words{"one"};
  }});
  EXPECT_EQ(end(id), "stopped");
}

TEST_F(AnnouncerTest, AnotherVoiceSaysWhatHasNotHadItsTurn) {
  const auto old = announcer->say({.words = {"one"}});
  const auto id = announcer->say({.words = {"uno"}});
  const auto spanish = std::make_shared<FakeResourceBundle>(Words{"uno"});
  announcer->setVoice(nullptr, Decomposer::initWithDirectory("Sounds", spanish), "Sounds", spanish);
  advance(3);
  EXPECT_EQ(end(old) + " " + end(id), "finished finished");
}

TEST_F(AnnouncerTest, APlayersSoundKeepsItsPlaceAndIsNotStopped) {
  const auto player = Player::initWithDirectory("Sounds", platform->voice);
  player->playSoundFilesInSequence({"one", "two"});
  const auto id = announcer->say({.words = {"three"}, .takeover = Takeover::atOnce});
  advance(2);
  EXPECT_THAT(lines(), testing::IsEmpty());
  advance(0.06);
  EXPECT_THAT(started(), ElementsAre(id));
  player->playSoundFilesInSequence({"long"});
  announcer->stop();
  EXPECT_EQ(end(id), "stopped");
  advance(4);
  EXPECT_TRUE(player->isPlaying());
  const auto dropped = announcer->say({.words = {"one"}});
  advance(0.8);
  EXPECT_EQ(platform->queue()->items().size(), 2u);
  player->stopAllSounds();
  advance(1);
  EXPECT_EQ(end(dropped), "stopped");
  EXPECT_EQ(history(), "+-");
}

TEST_F(AnnouncerTest, WithoutAQueueOrLengthsItStillEnds) {
  for (const auto& item : {"one", "two"}) platform->seconds[item] = 1;
  Platform::shared().examineRecording = nullptr;
  Platform::shared().silentItem = nullptr;
  settings = {.pauseSeconds = 1, .leadInSeconds = 1, .holdSeconds = 1};
  makeAnnouncer();
  const auto first = announcer->say({.words = {"one"}});
  const auto second = announcer->say({.words = {"two"}});
  advance(2.1);
  EXPECT_EQ(end(first) + " " + end(second), "finished finished") << "the three are 0";
  announcer.reset();
  platform = std::make_unique<FakePlatform>(Words{"one"});
  makeAnnouncer();
  Platform::shared().makeQueuePlayer = nullptr;
  EXPECT_EQ(cause(announcer->say({.words = {"one"}})), Cause::noDevice);
}

// The main thread is busy: nothing is reported until it runs again.
TEST_F(AnnouncerTest, CallsOfAnotherThreadEndOnceEachThoughTheMainThreadIsLate) {
  constexpr std::size_t kSaid = 10'000;
  std::thread([&] {
    for (std::size_t i = 0; i < kSaid / 2; ++i) announcer->say({.words = {"one"}, .key = "pace"});
    for (std::size_t i = 0; i < kSaid / 2; ++i) announcer->say({.words = {"two"}});
  }).join();
  EXPECT_THAT(recorder.lines, testing::IsEmpty());
  advance(60);
  EXPECT_EQ(recorder.ends.size(), kSaid);
  std::map<std::string, std::size_t> counts;
  for (const auto& [id, ends] : recorder.ends) ++counts[recorder.endOf(id)];
  EXPECT_EQ(counts["replaced"], kSaid / 2 - 1);
  EXPECT_EQ(counts["finished"], settings.longestQueue);
  EXPECT_EQ(counts["failed"], kSaid / 2 + 1 - settings.longestQueue);
}

TEST_F(AnnouncerTest, ObserversMayCallTheAnnouncer) {
  int said = 0;
  announcer->setObserver({.ended = [&](AnnouncementId, const AnnouncementEnd&) {
    if (++said < 1'000) announcer->say({.words = {"unknown"}});
  }});
  announcer->say({.words = {"unknown"}});
  advance(1);
  EXPECT_EQ(said, 1'000);
}

TEST_F(AnnouncerTest, TheVolumeIsThatOfTheSharedQueueAndStaysWhenItIsReplaced) {
  announcer->setVolume(0.5f);
  announcer->say({.words = {"long"}});
  EXPECT_EQ(platform->queue()->volume(), 0.5f);
  platform->loseDevice();
  platform->returnDevice();
  advance(1);
  EXPECT_EQ(platform->queue()->volume(), 0.5f);
  announcer->setVolume(7);
  EXPECT_EQ(announcer->volume(), 1);
}

}  // namespace
}  // namespace marlune
