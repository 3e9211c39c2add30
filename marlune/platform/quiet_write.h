#ifndef MARLUNE_PLATFORM_QUIET_WRITE_H_
#define MARLUNE_PLATFORM_QUIET_WRITE_H_

#include <sys/types.h>

#include <string_view>

namespace marlune {

// write(2) of `bytes` to `descriptor`, once, but never the process's end: where the system would
// raise SIGPIPE (the reader of a pipe is gone) or SIGXFSZ (the file-size limit is reached), the
// signal is held back and taken away again, whatever handler the process has, and the write just
// fails. Returns what write returned, with its errno. An interrupted write is tried again.
ssize_t quietWrite(int descriptor, std::string_view bytes) noexcept;

}  // namespace marlune

#endif  // MARLUNE_PLATFORM_QUIET_WRITE_H_
