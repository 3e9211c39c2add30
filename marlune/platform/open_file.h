#ifndef MARLUNE_PLATFORM_OPEN_FILE_H_
#define MARLUNE_PLATFORM_OPEN_FILE_H_

#include <sys/types.h>

#include "marlune/platform/visibility.h"

namespace marlune {

// A process can start with standard streams closed. open(2) then gives their numbers to other
// files, which would receive what the process prints. The library opens every file with these
// functions to prevent that.

// open(2) with O_CLOEXEC; the descriptor is above the standard streams. Returns -1 and sets errno
// on failure.
MARLUNE_INTERNAL_API int openFile(const char* path, int flags, mode_t mode = 0) noexcept;

// Returns `descriptor` unless it is a standard stream; then it returns a copy above them and closes
// the original. A negative descriptor is returned unchanged. Returns -1 and sets errno when no
// descriptor is free for the copy.
MARLUNE_INTERNAL_API int aboveStandardStreams(int descriptor) noexcept;

}  // namespace marlune

#endif  // MARLUNE_PLATFORM_OPEN_FILE_H_
