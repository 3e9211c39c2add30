// Tears workers down while they notify the main thread: teardown_soak [CYCLES [SEED]]. Prints
// counts. Exits with 1 if a count is wrong, and is ended by SIGALRM if a cycle hangs.

#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "support/teardown_cycles.h"

int main(int argc, char** argv) {
  constexpr std::uint64_t kCyclesAnAlarm = 1000;
  constexpr unsigned kSecondsAnAlarm = 600;
  const std::uint64_t cycles = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 100000;
  const auto seed = argc > 2 ? std::strtoul(argv[2], nullptr, 10) : 1;
  marlune::TeardownCounts total;
  while (total.cycles < cycles) {
    alarm(kSecondsAnAlarm);
    const auto counts = marlune::runTeardownCycles(std::min(kCyclesAnAlarm, cycles - total.cycles),
                                                   static_cast<std::uint32_t>(seed + total.cycles));
    total.cycles += counts.cycles;
    total.notifications += counts.notifications;
    total.wrongAnswers += counts.wrongAnswers;
    total.left += counts.left;
  }
  std::printf(
      "cycles %llu, notifications run %llu, wrong answers %llu, work left %llu (seed %lu)\n",
      static_cast<unsigned long long>(total.cycles),
      static_cast<unsigned long long>(total.notifications),
      static_cast<unsigned long long>(total.wrongAnswers),
      static_cast<unsigned long long>(total.left), static_cast<unsigned long>(seed));
  return total.wrongAnswers == 0 && total.left == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
