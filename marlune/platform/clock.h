#ifndef MARLUNE_PLATFORM_CLOCK_H_
#define MARLUNE_PLATFORM_CLOCK_H_

#include "marlune/platform/visibility.h"

namespace marlune {

// The time by which announcements expire and wait.
//
// Threads: any, at any time.
class MARLUNE_API Clock {
 public:
  virtual ~Clock() = default;

  // Seconds since some fixed moment. Never decreases, and continues while the device sleeps.
  virtual double now() const = 0;
};

}  // namespace marlune

#endif  // MARLUNE_PLATFORM_CLOCK_H_
