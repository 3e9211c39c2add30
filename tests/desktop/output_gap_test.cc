// What the queue logs about the gaps that an output counts.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/engine_rig.h"
#include "support/platform_fixture.h"

namespace marlune {
namespace {

using OutputGapTest = PlatformFixture;

std::string gapLine(int gaps) {
  return "ERROR: The sound had gaps: the output ran out of it " + std::to_string(gaps) + " times.";
}

TEST_F(OutputGapTest, OneLineAPhraseSaysThatTheOutputHadGapsWhileItSounded) {
  const RecordingFolder folder;
  const std::string path = folder.write("1.aif", countingSamples(100, 0), {22'050, 1});
  EngineRig rig;
  const auto queue = rig.makeQueue();
  rig.session.setActive(true);
  const struct {
    int gapsBefore, gapsWithin;
    bool isStopped;
    std::vector<std::string> lines;
  } kPhrases[] = {
      {0, 3, false, {gapLine(3)}},
      {2, 0, false, {}},
      {1, 2, true, {gapLine(2)}},
  };
  for (const auto& phrase : kPhrases) {
    for (int i = 0; i < phrase.gapsBefore; ++i) rig.output->addGap();
    EngineRig::append(*queue, path);
    queue->play();
    rig.crank(*queue, 50);
    for (int i = 0; i < phrase.gapsWithin; ++i) rig.output->addGap();
    rig.crank(*queue, 10);
    if (phrase.isStopped) {
      queue->setRate(0);
      queue->removeAllItems();
    }
    rig.crank(*queue, 50);
    EXPECT_EQ(log->lines(), phrase.lines);
    log->clear();
  }
}

}  // namespace
}  // namespace marlune
