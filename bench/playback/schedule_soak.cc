// Random schedules for the queue engine: schedule_soak [EVENTS [SEED]]. Prints counts. Exits with 1
// on a fault, and is ended by SIGALRM if a round hangs.

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "marlune/platform/platform.h"
#include "support/engine_schedule.h"

int main(int argc, char** argv) {
  constexpr std::uint64_t kEventsAnAlarm = 10'000;
  constexpr unsigned kSecondsAnAlarm = 600;
  const std::uint64_t events = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 1'000'000;
  const auto seed = argc > 2 ? std::strtoul(argv[2], nullptr, 10) : 1;
  const auto log = std::make_shared<marlune::FakeSystemLog>();
  marlune::Platform::shared().systemLog = log;
  marlune::EngineSchedule schedule(static_cast<std::uint32_t>(seed), log);
  const marlune::ScheduleCounts& counts = schedule.counts;
  while (counts.events < events) {
    alarm(kSecondsAnAlarm);
    schedule.run(std::min(kEventsAnAlarm, events - counts.events));
  }
  const auto print = [](const char* what, std::uint64_t number) {
    std::printf("%s %llu\n", what, static_cast<unsigned long long>(number));
  };
  print("events", counts.events);
  print("rounds", counts.rounds);
  print("queues that failed", counts.failures);
  print("items", counts.items);
  print("  heard whole", counts.heardWhole);
  print("  broken and left out", counts.leftOut);
  print("  removed", counts.removed);
  print("  dropped by a failed queue, with a line", counts.failed);
  print("  dropped with their queue, with a line", counts.ended);
  print("  pending when a round ended", counts.pending);
  print("FAULTS: items ended as heard but were not", counts.unheard);
  print("  rounds whose lines do not match the items", counts.lines);
  print("  items in no queue, or with a wrong end", counts.lost);
  print("  frames of no recording", counts.strange);
  print("  waits given up", counts.unanswered);
  return counts.faults() == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
