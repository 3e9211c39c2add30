// Announcements on a real PulseAudio server with a null sink: what their ends say is held against
// what the sink's monitor records.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "marlune/desktop/audio/device/pulse_output.h"
#include "support/heard_announcements.h"
#include "support/platform_fixture.h"
#include "support/pulse_server.h"

namespace marlune {
namespace {

class AnnouncerOnPulseTest : public PlatformFixture {};

// A pause may drop what the server has buffered, so nothing is paused here.
TEST_F(AnnouncerOnPulseTest, TheEndsAgreeWithTheSound) {
  if (!PulseServer::isInstalled()) {
    GTEST_SKIP() << "PulseAudio (pulseaudio, pactl, parec) is not installed here.";
  }
  const PulseServer server;
  const MonitorRecording recording;
  HeardAnnouncements announcements(
      std::make_shared<PulseOutput>(/*bufferSeconds=*/0.08, /*patienceSeconds=*/60),
      {{PulseServer::kRate, PulseServer::kChannels}, 1, /*pauses=*/false, nullptr}, 3);
  announcements.say(25);
  EXPECT_THAT(announcements.faults(recording.samplesAfter(PulseServer::kRate)), testing::IsEmpty());
  EXPECT_GT(announcements.countOf("finished"), 2u);
}

}  // namespace
}  // namespace marlune
