#ifndef MARLUNE_PLATFORM_SYSTEM_LOG_H_
#define MARLUNE_PLATFORM_SYSTEM_LOG_H_

#include <string_view>

namespace marlune {

// Where the lines go that a developer or a grammar author reads: standard error on a desktop, the
// device's log on a phone, a buffer in a test.
//
// Threads: any, at any time.
class SystemLog {
 public:
  virtual ~SystemLog() = default;

  // Takes one message, which may hold line feeds and has none at its end. How it is decorated
  // (time, process) and where it ends up is the log's business.
  // Never throws and never fails towards the caller: a message that cannot be written is lost.
  virtual void write(std::string_view message) noexcept = 0;
};

}  // namespace marlune

#endif  // MARLUNE_PLATFORM_SYSTEM_LOG_H_
