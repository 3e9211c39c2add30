#include "support/announcement_schedule.h"
#include "support/announcement_threads.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>

#include "support/platform_fixture.h"

namespace marlune {
namespace {

// CI runs some; the soak runs a million.
constexpr std::uint64_t kSchedules = 3'000;

class AnnouncementScheduleTest : public PlatformFixture {};

TEST_F(AnnouncementScheduleTest, RandomSchedulesKeepTheRules) {
  int bad = 0;
  for (std::uint64_t seed = 1; seed <= kSchedules && bad < 5; ++seed) {
    AnnouncementSchedule schedule(seed);
    for (const std::string& fault : schedule.run()) {
      ADD_FAILURE() << "seed " << seed << ": " << fault;
      ++bad;
    }
  }
}

TEST_F(AnnouncementScheduleTest, CallsOnSeveralThreadsEndEachAnnouncementOnce) {
  for (std::uint64_t seed = 1; seed <= 200; ++seed) {
    EXPECT_THAT(AnnouncementThreads(seed).run(), testing::IsEmpty()) << "seed " << seed;
  }
}

// Shows one schedule: --gtest_also_run_disabled_tests --gtest_filter=*OneSeed, with SEED set.
TEST_F(AnnouncementScheduleTest, DISABLED_OneSeed) {
  const char* const seed = std::getenv("SEED");
  ASSERT_TRUE(seed);
  AnnouncementSchedule schedule(std::strtoull(seed, nullptr, 10), /*isTraced=*/true);
  EXPECT_THAT(schedule.run(), testing::IsEmpty());
}

}  // namespace
}  // namespace marlune
