#include "tools/marlune/streams/standard_descriptors.h"

#include <fcntl.h>
#include <unistd.h>

namespace marlune::tool {

// Opens each for the wrong direction, so that using it fails. open returns the lowest free
// descriptor.
void occupyStandardDescriptors() {
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
    if (::fcntl(descriptor, F_GETFD) != -1) continue;
    const int wrongWay = descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY;
    static_cast<void>(::open("/dev/null", wrongWay));
  }
}

}  // namespace marlune::tool
