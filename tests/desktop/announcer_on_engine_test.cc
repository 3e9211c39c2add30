// Announcements on the queue engine: what their ends say is held against what the output took.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

#include "marlune/desktop/audio/output/clock_output.h"
#include "support/heard_announcements.h"
#include "support/platform_fixture.h"

namespace marlune {
namespace {

constexpr AudioFormat kMono = {22'050, 1};

class AnnouncerOnEngineTest : public PlatformFixture {};

TEST_F(AnnouncerOnEngineTest, TheEndsAgreeWithTheSound) {
  for (const bool loses : {false, true}) {
    std::vector<short> samples;  // while the output is open, only its thread uses them
    const auto output = std::make_shared<ClockOutput>(
        kMono,
        [&](const float* frames, std::size_t count, std::size_t) {
          for (std::size_t i = 0; i < count; ++i) {
            samples.push_back(static_cast<short>(std::lrintf(frames[i] * 32'768.0f)));
          }
        },
        /*speed=*/8);
    {
      HeardAnnouncements announcements(
          output,
          {kMono, 8, /*pauses=*/true, loses ? [&] { output->lose(); } : std::function<void()>()},
          loses ? 2 : 1);
      announcements.say(60);
      output->close();
      EXPECT_THAT(announcements.faults(samples), testing::IsEmpty());
      EXPECT_GT(announcements.countOf("finished"), 5u);
      EXPECT_GT(announcements.countOf("interrupted"), 0u);
    }
  }
}

}  // namespace
}  // namespace marlune
