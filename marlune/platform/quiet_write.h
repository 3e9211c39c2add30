#ifndef MARLUNE_PLATFORM_QUIET_WRITE_H_
#define MARLUNE_PLATFORM_QUIET_WRITE_H_

#include <sys/types.h>

#include <string_view>

#include "marlune/platform/visibility.h"

namespace marlune {

// write(2) of `bytes` to `descriptor`, once, without ever ending the process. Where the system
// would raise SIGPIPE (the pipe's reader is gone) or SIGXFSZ (the file-size limit is reached), the
// signal is blocked and discarded, whatever handler the process has, and the write merely fails.
// Returns the result of write, with its errno. Retries an interrupted write.
MARLUNE_INTERNAL_API ssize_t quietWrite(int descriptor, std::string_view bytes) noexcept;

}  // namespace marlune

#endif  // MARLUNE_PLATFORM_QUIET_WRITE_H_
