#ifndef MARLUNE_DESKTOP_SERVICES_BOOT_CLOCK_H_
#define MARLUNE_DESKTOP_SERVICES_BOOT_CLOCK_H_

#include "marlune/platform/clock.h"

namespace marlune {

// The time since the machine started, including the time it was suspended.
class BootClock : public Clock {
 public:
  double now() const override;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_SERVICES_BOOT_CLOCK_H_
