#include "marlune/desktop/audio/buffered_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "marlune/platform/open_file.h"

namespace marlune {

namespace {

// Fits most recordings of a word. A larger one costs more in fresh pages than it saves in calls.
constexpr std::size_t kBufferBytes = std::size_t{32} * 1024;

BufferedFile& fileFrom(void* user) { return *static_cast<BufferedFile*>(user); }

}  // namespace

std::unique_ptr<BufferedFile> BufferedFile::openForReading(const std::string& path,
                                                           std::string& cause) {
  return _open(path, O_RDONLY, cause);
}

std::unique_ptr<BufferedFile> BufferedFile::openForWriting(const std::string& path,
                                                           std::string& cause) {
  std::unique_ptr<BufferedFile> file = _open(path, O_WRONLY | O_CREAT, cause);
  // Emptied only now: by here it is known to be a regular file.
  if (file && ::ftruncate(file->_descriptor, 0) != 0) {
    cause = std::strerror(errno);
    return nullptr;
  }
  if (!file) return nullptr;
  file->_size = 0;
  file->_buffer.reserve(kBufferBytes);
  return file;
}

std::unique_ptr<BufferedFile> BufferedFile::_open(const std::string& path, int flags,
                                                  std::string& cause) {
  const int descriptor = openFile(path.c_str(), flags | O_NONBLOCK, 0666);
  if (descriptor < 0) {
    cause = std::strerror(errno);
    return nullptr;
  }
  std::unique_ptr<BufferedFile> file(new BufferedFile(descriptor));
  struct stat status;
  if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
    cause = "it is not a regular file";
    return nullptr;
  }
  file->_size = status.st_size;
  return file;
}

BufferedFile::~BufferedFile() { ::close(_descriptor); }

sf_count_t BufferedFile::read(void* bytes, sf_count_t count) {
  auto* target = static_cast<char*>(bytes);
  sf_count_t done = 0;
  while (done < count) {
    const sf_count_t offset = _position - _start;
    const bool isBuffered = offset >= 0 && offset < static_cast<sf_count_t>(_buffer.size());
    if (!isBuffered) {
      if (!_fill()) break;
      continue;
    }
    const sf_count_t some =
        std::min(count - done, static_cast<sf_count_t>(_buffer.size()) - offset);
    std::memcpy(target + done, _buffer.data() + offset, static_cast<std::size_t>(some));
    done += some;
    _position += some;
  }
  return done;
}

bool BufferedFile::_fill() {
  if (_position >= _size) return false;
  _start = _position;
  _buffer.resize(std::min(kBufferBytes, static_cast<std::size_t>(_size - _position)));
  const ssize_t count = ::pread(_descriptor, _buffer.data(), _buffer.size(), _start);
  _buffer.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
  return count > 0;
}

sf_count_t BufferedFile::write(const void* bytes, sf_count_t count) {
  const bool isFull = _buffer.size() + static_cast<std::size_t>(count) > kBufferBytes;
  if (isFull || _position != _start + static_cast<sf_count_t>(_buffer.size())) {
    flush();
    _start = _position;
  }
  const auto* source = static_cast<const char*>(bytes);
  _buffer.insert(_buffer.end(), source, source + count);
  _position += count;
  _size = std::max(_size, _position);
  return _hasFailed ? 0 : count;
}

bool BufferedFile::flush() {
  std::size_t done = 0;
  while (done < _buffer.size()) {
    const ssize_t count = ::pwrite(_descriptor, _buffer.data() + done, _buffer.size() - done,
                                   _start + static_cast<off_t>(done));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) {
      _hasFailed = true;
      break;
    }
    done += static_cast<std::size_t>(count);
  }
  _start += static_cast<sf_count_t>(_buffer.size());
  _buffer.clear();
  return !_hasFailed;
}

sf_count_t BufferedFile::seek(sf_count_t offset, int whence) {
  const sf_count_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? _position : _size;
  // A corrupt header can send the reader anywhere, past what can be added up included.
  if (__builtin_add_overflow(base, offset, &offset) || offset < 0) return -1;
  return _position = offset;
}

SF_VIRTUAL_IO& BufferedFile::operations() {
  static SF_VIRTUAL_IO operations = {
      [](void* user) { return fileFrom(user).size(); },
      [](sf_count_t offset, int whence, void* user) { return fileFrom(user).seek(offset, whence); },
      [](void* bytes, sf_count_t count, void* user) { return fileFrom(user).read(bytes, count); },
      [](const void* bytes, sf_count_t count, void* user) {
        return fileFrom(user).write(bytes, count);
      },
      [](void* user) { return fileFrom(user).position(); }};
  return operations;
}

}  // namespace marlune
