#ifndef MARLUNE_UTIL_LOG_FILE_H_
#define MARLUNE_UTIL_LOG_FILE_H_

#include <memory>
#include <string>
#include <string_view>

#include "marlune/platform/open_file.h"

namespace marlune {

// The log file of one run: an open descriptor, closed in the destructor. Lines that cannot be
// written (no space, a size limit, a file that failed to open) are dropped silently. Any thread.
class LogFile {
 public:
  // Opens `path` for writing; creates the file if it is absent and empties it if present. Returns
  // nullptr only when the system returns descriptor 0. If the open fails, returns a file that drops
  // every line. Never blocks, whatever kind of file `path` is.
  static std::shared_ptr<LogFile> openAtPath(const std::string& path);

  // Appends `line` with a single write.
  void write(std::string_view line) const noexcept;

  // Flushes the written lines to disk.
  void flush() const noexcept;

 private:
  explicit LogFile(int descriptor) : _descriptor(descriptor) {}

  const FileDescriptor _descriptor;  // not open if the open failed
};

}  // namespace marlune

#endif  // MARLUNE_UTIL_LOG_FILE_H_
