// An app's test of its announcements. Succeeds if the phrase is finished in virtual time.
#include "marlune/testing.h"

int main() {
  marlune::FakePlatform platform({"five", "kilometers"});
  marlune::EndRecorder recorder;
  const auto announcer =
      marlune::Announcer::initWithParser(nullptr, platform.decomposer(), "Sounds", platform.voice);
  announcer->setObserver(recorder.observer());
  const auto id = announcer->say({.words = {"five", "kilometers"}, .startWithin = 1});
  platform.clock->advance(3);
  return recorder.endOf(id) == "finished" ? 0 : 1;
}
