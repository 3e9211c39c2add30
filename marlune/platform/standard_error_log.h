#ifndef MARLUNE_PLATFORM_STANDARD_ERROR_LOG_H_
#define MARLUNE_PLATFORM_STANDARD_ERROR_LOG_H_

#include "marlune/platform/system_log.h"
#include "marlune/platform/visibility.h"

namespace marlune {

// The default system log: writes each message unchanged, with a line feed, to standard error. A
// message up to the size of a pipe's atomic write is never interleaved with another.
class MARLUNE_API StandardErrorLog : public SystemLog {
 public:
  void write(std::string_view message) noexcept override;
};

}  // namespace marlune

#endif  // MARLUNE_PLATFORM_STANDARD_ERROR_LOG_H_
