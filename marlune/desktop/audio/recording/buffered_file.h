#ifndef MARLUNE_DESKTOP_AUDIO_RECORDING_BUFFERED_FILE_H_
#define MARLUNE_DESKTOP_AUDIO_RECORDING_BUFFERED_FILE_H_

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "marlune/platform/failure.h"
#include "marlune/platform/open_file.h"

namespace marlune {

// A regular file with one buffer. Readers of sound files read headers field by field, with one or
// two system calls each; through the buffer a short recording takes one read.
class BufferedFile {
 public:
  // Opens the file for reading. Fails, with a clause, if the path does not lead to a regular file
  // that can be read. Never blocks on a FIFO or a device.
  static Result<std::unique_ptr<BufferedFile>> open(const std::string& path);

  std::int64_t size() const { return _size; }  // in bytes
  std::int64_t read(void* bytes, std::int64_t count);
  std::int64_t seek(std::int64_t offset, int whence);
  std::int64_t position() const { return _position; }

 private:
  explicit BufferedFile(FileDescriptor descriptor) : _descriptor(std::move(descriptor)) {}
  bool _fill();

  const FileDescriptor _descriptor;
  std::int64_t _size = 0;
  std::int64_t _position = 0;
  std::vector<char> _buffer;  // bytes of the file from _start
  std::int64_t _start = 0;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_RECORDING_BUFFERED_FILE_H_
