// The output on a real PulseAudio server with a null sink. Anything that depends on the machine's
// load is only bounded.

#include "marlune/desktop/audio/device/pulse_output.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <semaphore>

#include "marlune/desktop/audio/device/device_output.h"
#include "support/engine_rig.h"
#include "support/platform_fixture.h"
#include "support/pulse_server.h"

namespace marlune {
namespace {

constexpr AudioFormat kFormat = {PulseServer::kRate, 1};
constexpr std::size_t kOneSecond = PulseServer::kRate;

class PulseOutputTest : public PlatformFixture {
 protected:
  void SetUp() override {
    PlatformFixture::SetUp();
    if (!PulseServer::isInstalled()) {
      GTEST_SKIP() << "PulseAudio (pulseaudio, pactl, parec) is not installed here.";
    }
    server = std::make_unique<PulseServer>();
    session.setCategory(AudioSession::kCategoryPlayback, AudioSession::kDuckOthers);
  }

  // Plays `samples` from three recordings.
  std::shared_ptr<DesktopQueuePlayer> play(const std::vector<short>& samples) {
    EXPECT_EQ(session.setActive(true).error, std::nullopt);
    auto queue = DesktopQueuePlayer::overRoute(route);
    const std::size_t third = samples.size() / 3;
    for (std::size_t i = 0; i < 3; ++i) {
      const auto begin = samples.begin() + static_cast<long>(i * third);
      const std::string name = std::to_string(_recordings++) + ".aif";
      EngineRig::append(*queue,
                        folder.write(name, {begin, begin + static_cast<long>(third)}, kFormat));
    }
    queue->play();
    return queue;
  }
  static bool playsOut(const DesktopQueuePlayer& queue) {
    return waitUntil([&] { return queue.items().empty(); }) &&
           queue.status() == QueuePlayer::Status::readyToPlay;
  }
  bool fails(const DesktopQueuePlayer& queue, const std::string& reason) const {
    return waitUntil([&] { return queue.status() == QueuePlayer::Status::failed; }) &&
           waitUntil([&] { return _text().find(reason) != std::string::npos; });
  }

  const RecordingFolder folder{};
  std::unique_ptr<PulseServer> server;
  const std::shared_ptr<AudioRoute> route = std::make_shared<AudioRoute>(
      std::make_shared<PulseOutput>(/*bufferSeconds=*/0.08, /*patienceSeconds=*/60));
  DesktopAudioSession session{route};

 private:
  std::string _text() const {
    std::string text;
    for (const std::string& line : log->lines()) text += line + "\n";
    return text;
  }

  int _recordings = 0;
};

// A source of sound that counts what is taken and can be blocked.
class HeldSource : public AudioSource {
 public:
  std::size_t render(float* frames, std::size_t count, int channels) noexcept override {
    if (isHeld) release.acquire();
    std::fill_n(frames, count * static_cast<std::size_t>(channels), 0.25f);
    taken += count;
    return count;
  }
  std::atomic<std::size_t> taken = 0;
  std::atomic<bool> isHeld = false;
  std::binary_semaphore release{0};
};

std::size_t soundFrames(const std::vector<short>& samples) {
  return samples.size() - static_cast<std::size_t>(std::count(samples.begin(), samples.end(), 0));
}

TEST_F(PulseOutputTest, PlaysTheConcatenationToItsLastSampleWithTheRoleOnTheStreamAlone) {
  const MonitorRecording recording;
  const std::vector<short> sound = countingSamples(60'000, 0);
  const auto queue = play(sound);
  const std::string inputs = PulseServer::control({"list", "sink-inputs"});
  EXPECT_NE(inputs.find("media.role = \"announce\""), std::string::npos) << inputs;
  EXPECT_EQ(std::getenv("PULSE_PROP"), nullptr);
  EXPECT_TRUE(playsOut(*queue));
  EXPECT_TRUE(session.setActive(false).succeeded);  // drops sound that has not been heard
  const std::vector<short> recorded = recording.samplesAfter(kOneSecond);
  const std::vector<short> end(sound.end() - 16, sound.end());
  EXPECT_EQ(brokenWindows(end, recorded, end.size()), 0U) << "the end is cut off";
  const std::size_t broken = brokenWindows(sound, recorded);
  if (route->output()->gapCount() == 0) {
    EXPECT_EQ(broken, 0U);
  }
  EXPECT_LT(broken, sound.size() / 512 / 2);
}

TEST_F(PulseOutputTest, TheNextPhrasePlaysAfterALoss) {
  const struct {
    std::string_view why, reason;
    void (*lose)(PulseServer&);
    void (*mend)(PulseServer&);
  } kCases[] = {
      {"the server dies", "The sound server is gone.", [](PulseServer& it) { it.kill(); },
       [](PulseServer& it) { it.start(); }},
      {"the sink goes", "The sound server has ended the stream.",
       [](PulseServer& it) {
         it.control({"unload-module", "module-null-sink"});
       },
       [](PulseServer& it) {
         it.control({"load-module", "module-null-sink", "sink_name=test"});
       }},
      {"the server hangs", "The sound output has stopped taking sound.",
       [](PulseServer& it) { it.suspend(); }, [](PulseServer& it) { it.resume(); }},
  };
  for (const auto& each : kCases) {
    SCOPED_TRACE(each.why);
    log->clear();
    const auto queue = play(countingSamples(60 * kOneSecond, 0));
    each.lose(*server);
    EXPECT_TRUE(fails(*queue, std::string(each.reason))) << testing::PrintToString(log->lines());
    each.mend(*server);
    EXPECT_TRUE(playsOut(*play(countingSamples(3'000, 0)))) << testing::PrintToString(log->lines());
  }
}

TEST_F(PulseOutputTest, IsTheSoundDeviceWhereAServerRuns) {
  HeldSource source;
  const auto device = makeDeviceOutput();
  EXPECT_TRUE(waitUntil([&] { return !device->open(source, /*role=*/""); }));
  const std::string inputs = PulseServer::control({"list", "sink-inputs"});
  EXPECT_NE(inputs.find("media.name = \"Speech\""), std::string::npos) << inputs;
  EXPECT_EQ(inputs.find("media.role"), std::string::npos) << inputs;
}

TEST_F(PulseOutputTest, GivesUpOnAServerThatDoesNotAnswerAndSucceedsOnceItDoes) {
  HeldSource source;
  PulseOutput impatient(/*bufferSeconds=*/0.08, /*patienceSeconds=*/0.02);
  PulseOutput patient(/*bufferSeconds=*/0.08, /*patienceSeconds=*/60);
  server->suspend();
  EXPECT_EQ(impatient.open(source, "")->message, "The sound server does not answer.");
  EXPECT_TRUE(impatient.hasFoundServer());
  server->resume();
  EXPECT_EQ(patient.open(source, ""), std::nullopt);
  server->kill();
  EXPECT_NE(patient.open(source, ""), std::nullopt);
  EXPECT_FALSE(patient.hasFoundServer());
}

TEST_F(PulseOutputTest, ClosingDropsWhatHasNotBeenHeard) {
  const MonitorRecording recording;
  HeldSource source;
  PulseOutput output(/*bufferSeconds=*/1.5, /*patienceSeconds=*/60);
  ASSERT_EQ(output.open(source, ""), std::nullopt);
  EXPECT_TRUE(waitUntil([&] { return soundFrames(recording.samples()) > 0; }));
  EXPECT_TRUE(waitUntil([&] { return output.latencyFrames() < source.taken; }));
  EXPECT_GT(output.latencyFrames(), 0U);
  output.close();
  const std::size_t taken = source.taken;
  const std::size_t heard = soundFrames(recording.samplesAfter(3 * kOneSecond));
  EXPECT_LT(heard, taken);
  EXPECT_EQ(source.taken, taken);
}

TEST_F(PulseOutputTest, CountsAnUnderflow) {
  const MonitorRecording recording;
  HeldSource source;
  PulseOutput output(/*bufferSeconds=*/0.08, /*patienceSeconds=*/60);
  ASSERT_EQ(output.open(source, ""), std::nullopt);
  const std::uint64_t before = output.gapCount();
  source.isHeld = true;
  EXPECT_TRUE(waitUntil([&] {
    const auto samples = recording.samples();
    return soundFrames(samples) > 0 && samples.back() == 0;
  }));
  source.isHeld = false;
  source.release.release();
  EXPECT_TRUE(waitUntil([&] { return output.gapCount() > before; }));
}

}  // namespace
}  // namespace marlune
