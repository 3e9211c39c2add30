// Random schedules against the queue engine; bench/playback/schedule_soak runs longer ones.

#include "support/engine_schedule.h"
#include "support/platform_fixture.h"

namespace marlune {
namespace {

class EngineScheduleTest : public PlatformFixture {};

TEST_F(EngineScheduleTest, EachItemIsHeardToItsEndOrDroppedWithALineOrStillQueued) {
  EngineSchedule schedule(/*seed=*/7, log);
  schedule.run(3'000);
  const ScheduleCounts& counts = schedule.counts;
  EXPECT_EQ(counts.unheard, 0u) << "items ended as heard and were not";
  EXPECT_EQ(counts.lines, 0u) << "rounds had other lines than dropped or broken items";
  EXPECT_EQ(counts.lost, 0u) << "items are in no queue, or have a fate that they cannot have";
  EXPECT_EQ(counts.strange, 0u) << "frames belong to no recording";
  EXPECT_EQ(counts.unanswered, 0u) << "waits for the main thread were given up";
  // The schedule actually plays recordings.
  EXPECT_GT(counts.heardWhole, 50u);
  EXPECT_GT(counts.failed, 50u);
  EXPECT_GT(counts.removed, 50u);
}

}  // namespace
}  // namespace marlune
