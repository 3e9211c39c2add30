#include "marlune/platform/open_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace marlune {

int openFile(const char* path, int flags, mode_t mode) noexcept {
  return aboveStandardStreams(::open(path, flags | O_CLOEXEC, mode));
}

int aboveStandardStreams(int descriptor) noexcept {
  if (descriptor < 0 || descriptor > STDERR_FILENO) return descriptor;
  const int moved = ::fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  const int error = errno;
  ::close(descriptor);
  errno = error;
  return moved;
}

}  // namespace marlune
