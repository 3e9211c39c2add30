#include "marlune/desktop/services/boot_clock.h"

#include <ctime>

namespace marlune {

double BootClock::now() const {
  timespec time = {};
  ::clock_gettime(CLOCK_BOOTTIME, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

}  // namespace marlune
