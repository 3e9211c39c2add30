#include "marlune/util/log_file.h"

#include <fcntl.h>
#include <unistd.h>

#include "marlune/platform/quiet_write.h"

namespace marlune {

namespace {

// `descriptor` or, in place of a standard stream that is closed, one beyond them: what the process
// prints must not end up in the log.
int beyondStandardStreams(int descriptor) {
  if (descriptor < 0 || descriptor > STDERR_FILENO) return descriptor;
  const int moved = ::fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  ::close(descriptor);
  return moved;
}

}  // namespace

std::shared_ptr<LogFile> LogFile::openAtPath(const std::string& path) {
  // O_NONBLOCK: a FIFO at the path would otherwise hold the caller until somebody reads it.
  // O_APPEND: a thread that still writes to the former file, which may have had the same name,
  // must not write over new lines.
  constexpr int kFlags =
      O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
  const int descriptor = ::open(path.c_str(), kFlags, 0644);
  if (descriptor == 0) {
    ::close(descriptor);
    return nullptr;
  }
  return std::shared_ptr<LogFile>(new LogFile(beyondStandardStreams(descriptor)));
}

LogFile::~LogFile() {
  if (_descriptor >= 0) ::close(_descriptor);
}

void LogFile::write(std::string_view line) const noexcept {
  if (_descriptor >= 0) quietWrite(_descriptor, line);
}

void LogFile::flush() const noexcept {
  if (_descriptor >= 0) ::fsync(_descriptor);
}

}  // namespace marlune
