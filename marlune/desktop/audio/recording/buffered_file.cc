#include "marlune/desktop/audio/recording/buffered_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace marlune {

namespace {

// Holds the header of most recordings; at first only the header is read of many.
constexpr std::size_t kFirstBytes = 512;
// Holds most single-word recordings. A larger buffer costs more in page faults than it saves in
// system calls.
constexpr std::size_t kBufferBytes = std::size_t{32} * 1024;

}  // namespace

Result<std::unique_ptr<BufferedFile>> BufferedFile::open(const std::string& path) {
  FileDescriptor descriptor(openFile(path.c_str(), O_RDONLY | O_NONBLOCK));
  if (!descriptor.isOpen()) return Failure::unreadable(std::strerror(errno));
  std::unique_ptr<BufferedFile> file(new BufferedFile(std::move(descriptor)));
  struct stat status;
  if (::fstat(file->_descriptor.number(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return Failure::unreadable("it is not a regular file");
  }
  file->_size = status.st_size;
  return file;
}

std::int64_t BufferedFile::read(void* bytes, std::int64_t count) {
  auto* target = static_cast<char*>(bytes);
  std::int64_t done = 0;
  while (done < count) {
    const std::int64_t offset = _position - _start;
    const bool isBuffered = offset >= 0 && offset < static_cast<std::int64_t>(_buffer.size());
    if (!isBuffered) {
      if (!_fill()) break;
      continue;
    }
    const std::int64_t some =
        std::min(count - done, static_cast<std::int64_t>(_buffer.size()) - offset);
    std::memcpy(target + done, _buffer.data() + offset, static_cast<std::size_t>(some));
    done += some;
    _position += some;
  }
  return done;
}

bool BufferedFile::_fill() {
  if (_position >= _size) return false;
  _start = _position;
  const std::size_t most = _position == 0 ? kFirstBytes : kBufferBytes;
  _buffer.resize(std::min(most, static_cast<std::size_t>(_size - _position)));
  const ssize_t count = ::pread(_descriptor.number(), _buffer.data(), _buffer.size(), _start);
  _buffer.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
  return count > 0;
}

std::int64_t BufferedFile::seek(std::int64_t offset, int whence) {
  const std::int64_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? _position : _size;
  // A corrupt header can request any position, including one whose sum overflows.
  if (__builtin_add_overflow(base, offset, &offset) || offset < 0) return -1;
  return _position = offset;
}

}  // namespace marlune
