#ifndef MARLUNE_TOOLS_MARLUNE_STREAMS_SHOWN_LOG_H_
#define MARLUNE_TOOLS_MARLUNE_STREAMS_SHOWN_LOG_H_

#include "marlune/platform/standard_error_log.h"

namespace marlune::tool {

// Writes the library's log to standard error, one line for each message. Control characters appear
// as `shown` prints them.
class ShownLog : public StandardErrorLog {
 public:
  void write(std::string_view message) noexcept override;
};

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_STREAMS_SHOWN_LOG_H_
