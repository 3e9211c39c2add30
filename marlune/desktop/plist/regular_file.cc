#include "marlune/desktop/plist/regular_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "marlune/desktop/plist/property_list_error.h"
#include "marlune/desktop/plist/property_list_limits.h"
#include "marlune/platform/open_file.h"

namespace marlune {

namespace {

class OpenFile {
 public:
  // Non-blocking: otherwise opening a FIFO without a writer would wait forever.
  explicit OpenFile(const char* path)
      : _descriptor(openFile(path, O_RDONLY | O_NONBLOCK | O_NOCTTY)) {
    if (!_descriptor.isOpen()) _fail();
  }

  std::string content() const {
    std::string bytes(_checkedSize(), '\0');
    std::size_t filled = 0;
    while (filled < bytes.size()) {
      const ssize_t got =
          ::read(_descriptor.number(), bytes.data() + filled, bytes.size() - filled);
      if (got < 0 && errno != EINTR) _fail();
      if (got == 0) break;  // the file was truncated in between
      if (got > 0) filled += static_cast<std::size_t>(got);
    }
    bytes.resize(filled);
    return bytes;
  }

 private:
  [[noreturn]] static void _fail() {
    throw PropertyListError{std::generic_category().message(errno)};
  }

  std::size_t _checkedSize() const {
    struct stat status;
    if (::fstat(_descriptor.number(), &status) != 0) _fail();
    if (!S_ISREG(status.st_mode)) {
      throw PropertyListError{std::string("expected a regular file, found ") +
                              _kindOf(status.st_mode)};
    }
    if (status.st_size > static_cast<off_t>(kMostPropertyListBytes)) {
      throw PropertyListError{"expected at most 64 MiB, found " + std::to_string(status.st_size) +
                              " bytes"};
    }
    return static_cast<std::size_t>(status.st_size);
  }

  static const char* _kindOf(mode_t mode) {
    if (S_ISDIR(mode)) return "a directory";
    if (S_ISFIFO(mode)) return "a FIFO";
    if (S_ISSOCK(mode)) return "a socket";
    return "a device";
  }

  const FileDescriptor _descriptor;
};

}  // namespace

std::string contentOfRegularFile(const std::string& path) {
  return OpenFile(path.c_str()).content();
}

}  // namespace marlune
