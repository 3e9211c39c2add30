#ifndef MARLUNE_PLATFORM_OPEN_FILE_H_
#define MARLUNE_PLATFORM_OPEN_FILE_H_

#include <sys/types.h>
#include <unistd.h>

#include <utility>

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

// Owns a descriptor and closes it. A negative one stands for none.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int descriptor) : _descriptor(descriptor) {}
  FileDescriptor(FileDescriptor&& other) noexcept
      : _descriptor(std::exchange(other._descriptor, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(_descriptor, other._descriptor);
    return *this;
  }
  ~FileDescriptor() {
    if (_descriptor >= 0) ::close(_descriptor);
  }

  bool isOpen() const { return _descriptor >= 0; }
  int number() const { return _descriptor; }

 private:
  int _descriptor = -1;
};

}  // namespace marlune

#endif  // MARLUNE_PLATFORM_OPEN_FILE_H_
