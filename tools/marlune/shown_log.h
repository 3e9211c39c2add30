#ifndef MARLUNE_TOOLS_MARLUNE_SHOWN_LOG_H_
#define MARLUNE_TOOLS_MARLUNE_SHOWN_LOG_H_

#include "marlune/platform/standard_error_log.h"

namespace marlune::tool {

// The library's log on standard error, each message on one line: control characters as `shown`
// prints them.
class ShownLog : public StandardErrorLog {
 public:
  void write(std::string_view message) noexcept override;
};

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_SHOWN_LOG_H_
