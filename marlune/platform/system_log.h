#ifndef MARLUNE_PLATFORM_SYSTEM_LOG_H_
#define MARLUNE_PLATFORM_SYSTEM_LOG_H_

#include <string_view>

#include "marlune/platform/visibility.h"

namespace marlune {

// Receives the lines meant for a developer or a grammar author: standard error on a desktop, the
// device's log on a phone, a buffer in a test.
//
// Threads: any, at any time.
class MARLUNE_API SystemLog {
 public:
  virtual ~SystemLog() = default;

  // Writes one message, which may contain line feeds but does not end with one. The log decides how
  // to decorate it (time, process) and where to put it. Never throws and reports no failure: a
  // message that cannot be written is lost.
  virtual void write(std::string_view message) noexcept = 0;
};

}  // namespace marlune

#endif  // MARLUNE_PLATFORM_SYSTEM_LOG_H_
