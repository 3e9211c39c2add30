// Random schedules of announcements on a virtual clock: announcement_soak [SCHEDULES [SEED]].
// Prints what became of the announcements. With "threads" as the third argument, several threads
// call. Exits with 1 on a fault, and is ended by SIGALRM if a schedule hangs.

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "marlune/platform/platform.h"
#include "support/announcement_schedule.h"
#include "support/announcement_threads.h"

namespace {

// A log that would otherwise grow, and print a line for each lost device.
class NoLog : public marlune::SystemLog {
 public:
  void write(std::string_view) noexcept override {}
};

}  // namespace

int main(int argc, char** argv) {
  constexpr unsigned kSecondsAnAlarm = 60;
  const std::uint64_t schedules = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 1'000'000;
  const std::uint64_t first = argc > 2 ? std::strtoull(argv[2], nullptr, 10) : 1;
  marlune::Platform::shared().systemLog = std::make_shared<NoLog>();
  std::map<std::string, std::uint64_t> ends;
  std::uint64_t faults = 0;
  const bool hasThreads = argc > 3 && std::string(argv[3]) == "threads";
  const auto show = [&](std::uint64_t seed, const std::vector<std::string>& found) {
    for (const std::string& fault : found) {
      if (++faults > 20) return;
      std::printf("seed %llu: %s\n", static_cast<unsigned long long>(seed), fault.c_str());
    }
  };
  for (std::uint64_t seed = first; seed < first + schedules; ++seed) {
    alarm(kSecondsAnAlarm);
    if (hasThreads) {
      show(seed, marlune::AnnouncementThreads(seed).run());
      continue;
    }
    marlune::AnnouncementSchedule schedule(seed);
    show(seed, schedule.run());
    for (const auto& [id, each] : schedule.judge().cases()) {
      std::string end = marlune::EndRecorder::nameOf(each.end);
      if (each.end == marlune::AnnouncementEnd::Kind::failed) {
        end += ", cause " + std::to_string(static_cast<int>(each.cause));
      }
      ++ends[end];
    }
  }
  std::printf("schedules %llu\n", static_cast<unsigned long long>(schedules));
  for (const auto& [end, count] : ends) {
    std::printf("  %s %llu\n", end.c_str(), static_cast<unsigned long long>(count));
  }
  std::printf("FAULTS %llu\n", static_cast<unsigned long long>(faults));
  return faults == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
