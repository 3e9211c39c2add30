#include "marlune/util/log_file.h"

#include <fcntl.h>
#include <unistd.h>

#include "marlune/platform/quiet_write.h"

namespace marlune {

std::shared_ptr<LogFile> LogFile::openAtPath(const std::string& path) {
  // O_NONBLOCK: opening a FIFO would otherwise block until it has a reader. O_APPEND: a thread may
  // still be writing to the previous file, which may have the same name, and must not overwrite new
  // lines.
  constexpr int kFlags =
      O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
  // Not openFile, which also moves descriptor 0: here a descriptor of 0 counts as a failure.
  const int descriptor = ::open(path.c_str(), kFlags, 0644);
  if (descriptor == 0) {
    ::close(descriptor);
    return nullptr;
  }
  return std::shared_ptr<LogFile>(new LogFile(aboveStandardStreams(descriptor)));
}

void LogFile::write(std::string_view line) const noexcept {
  if (_descriptor.isOpen()) quietWrite(_descriptor.number(), line);
}

void LogFile::flush() const noexcept {
  if (_descriptor.isOpen()) ::fsync(_descriptor.number());
}

}  // namespace marlune
