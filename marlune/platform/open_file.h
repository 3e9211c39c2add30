#ifndef MARLUNE_PLATFORM_OPEN_FILE_H_
#define MARLUNE_PLATFORM_OPEN_FILE_H_

#include <sys/types.h>

namespace marlune {

// A process can start with standard streams closed, and open(2) then gives their numbers to
// other files: what the process prints would end up in those. Every file of ours is opened here.

// open(2) with O_CLOEXEC, above the standard streams. -1 with errno when it fails.
int openFile(const char* path, int flags, mode_t mode = 0) noexcept;

// `descriptor` or, in place of a standard stream, a copy above them; the original is then closed.
// A negative one is returned as it is. -1 with errno when there is no room for the copy.
int aboveStandardStreams(int descriptor) noexcept;

}  // namespace marlune

#endif  // MARLUNE_PLATFORM_OPEN_FILE_H_
