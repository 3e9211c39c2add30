#ifndef MARLUNE_UTIL_LOG_FILE_H_
#define MARLUNE_UTIL_LOG_FILE_H_

#include <memory>
#include <string>
#include <string_view>

namespace marlune {

// The log file of one run: an open descriptor, closed at the end. Lines that cannot be written
// (no space, a size limit, a file that never opened) are lost without a word. Any thread.
class LogFile {
 public:
  // Opens `path` for writing, created if absent, emptied if present. nullptr only when the system
  // hands out descriptor 0; an open that fails gives a file that loses what is written to it.
  // Never waits, whatever stands at `path`.
  static std::shared_ptr<LogFile> openAtPath(const std::string& path);

  ~LogFile();
  LogFile(const LogFile&) = delete;
  LogFile& operator=(const LogFile&) = delete;

  // Appends `line`, in one write.
  void write(std::string_view line) const noexcept;

  // Brings what was written to the disk.
  void flush() const noexcept;

 private:
  explicit LogFile(int descriptor) : _descriptor(descriptor) {}

  const int _descriptor;  // negative: the open failed
};

}  // namespace marlune

#endif  // MARLUNE_UTIL_LOG_FILE_H_
