#include "marlune/desktop/audio/output/sound_file_writer.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "marlune/desktop/audio/base/sample_conversion.h"
#include "marlune/platform/open_file.h"
#include "marlune/platform/quiet_write.h"

namespace marlune {

namespace {

constexpr std::size_t kBufferSamples = std::size_t{16} * 1024;
// For a file of unknown length; readers take it as "to the end of the stream".
constexpr std::uint32_t kUnknownBytes = 0x7FFF'F000;
constexpr std::uint64_t kMaxFileBytes = 0xFFFF'FF00;  // sizes have 32 bits

}  // namespace

Result<std::unique_ptr<SoundFileWriter>> SoundFileWriter::create(const std::string& path,
                                                                 SoundFileKind kind) {
  std::unique_ptr<SoundFileWriter> writer(new SoundFileWriter(targetOf(path), kind));
  if (!writer->_open()) return writer->failure();
  return writer;
}

std::string SoundFileWriter::targetOf(std::string path) {
  constexpr int kMaxLinks = 40;  // the system's own limit
  std::error_code error;
  for (int i = 0; i < kMaxLinks; ++i) {
    const std::filesystem::path link = std::filesystem::read_symlink(path, error);
    if (error) break;
    path = (std::filesystem::path(path).parent_path() / link).string();
  }
  return path;
}

bool SoundFileWriter::_fail(int error) {
  _failure = Failure::unwritable(std::generic_category().message(error));
  return false;
}

bool SoundFileWriter::_open() {
  struct stat status;
  if (::stat(_target.c_str(), &status) != 0) {
    return errno == ENOENT ? _createDraft(0666) : _fail(errno);
  }
  if (!S_ISREG(status.st_mode)) {
    _isDirect = true;
    _descriptor = FileDescriptor(openFile(_target.c_str(), O_WRONLY | O_NOCTTY));
    return _descriptor.isOpen() || _fail(errno);
  }
  // Renaming needs only write permission on the folder, so check the file itself.
  if (::access(_target.c_str(), W_OK) != 0) return _fail(errno);
  const mode_t mode = status.st_mode & 0777;
  if (!_createDraft(mode)) return false;
  return ::fchmod(_descriptor.number(), mode) == 0 || _fail(errno);
}

bool SoundFileWriter::_createDraft(unsigned mode) {
  const std::string path = _target + ".partial";
  constexpr int kFlags = O_WRONLY | O_CREAT | O_EXCL;
  _descriptor = FileDescriptor(openFile(path.c_str(), kFlags, mode));
  // A draft left by an earlier run is unlinked, not truncated: it may have another hard link.
  if (!_descriptor.isOpen() && errno == EEXIST && ::unlink(path.c_str()) == 0) {
    _descriptor = FileDescriptor(openFile(path.c_str(), kFlags, mode));
  }
  if (!_descriptor.isOpen()) return _fail(errno);
  _draftPath = path;
  return true;
}

std::string SoundFileWriter::_header(std::uint64_t dataBytes) const {
  const auto bytes = static_cast<std::uint32_t>(_isDirect ? kUnknownBytes : dataBytes);
  const auto frameBytes = static_cast<std::uint32_t>(_format.channels) * 2;
  return soundFileHeader(_kind, _format, bytes / frameBytes * frameBytes);
}

void SoundFileWriter::start(const AudioFormat& format) {
  _format = format;
  _buffer = std::make_unique_for_overwrite<short[]>(kBufferSamples);
  _headerBytes = _header(0).size();
  _used = _headerBytes / sizeof(short);  // written with the first samples
}

std::size_t SoundFileWriter::roomFrames() const {
  return (kBufferSamples - _used) / static_cast<std::size_t>(_format.channels);
}

bool SoundFileWriter::add(std::size_t count) {
  const std::size_t samples = count * static_cast<std::size_t>(_format.channels);
  constexpr bool kIsLittleEndian = std::endian::native == std::endian::little;
  if (kIsLittleEndian != (_kind == SoundFileKind::wav)) {
    std::transform(room(), room() + samples, room(), byteSwapped);
  }
  _used += samples;
  return roomFrames() > 0 || flush();
}

bool SoundFileWriter::flush() {
  if (_failure) return false;
  const std::uint64_t size = std::exchange(_used, 0) * sizeof(short);
  if (size == 0) return true;
  const bool isFirst = _fileBytes == 0;
  if (isFirst) {
    const std::string header = _header(size - _headerBytes);
    std::memcpy(_buffer.get(), header.data(), header.size());
  }
  const bool isWritten = _writeBuffer(size);
  if (_isDirect || (isFirst && isWritten)) return isWritten;
  // Also after a failure, so that what was written can be played.
  return _correctHeader() && isWritten;
}

bool SoundFileWriter::_writeBuffer(std::uint64_t size) {
  if (!_isDirect && _fileBytes + size > kMaxFileBytes) {
    _failure = Failure::unwritable("it would be larger than 4 GiB");
    return false;
  }
  std::string_view rest(reinterpret_cast<const char*>(_buffer.get()), size);
  while (!rest.empty()) {
    const ssize_t count = quietWrite(_descriptor.number(), rest);
    if (count <= 0) return _fail(errno);
    _fileBytes += static_cast<std::uint64_t>(count);
    rest.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

// Overwrites in place, so a full disk does not matter.
bool SoundFileWriter::_correctHeader() {
  if (_fileBytes < _headerBytes) {
    ::unlink(_draftPath.c_str());
    _draftPath.clear();
    return false;
  }
  const std::string header = _header(_fileBytes - _headerBytes);
  const bool isCorrect = ::pwrite(_descriptor.number(), header.data(), header.size(), 0) ==
                         static_cast<ssize_t>(header.size());
  return isCorrect || _fail(errno);
}

bool SoundFileWriter::commit() {
  if (_failure) return false;
  if (_draftPath.empty()) return true;
  if (!_isDraftOurs()) {
    _failure = Failure::unwritable("another program has replaced " + _draftPath);
    return false;
  }
  if (::rename(_draftPath.c_str(), _target.c_str()) != 0) return _fail(errno);
  _draftPath.clear();
  return true;
}

bool SoundFileWriter::_isDraftOurs() const {
  struct stat named, ours;
  return ::lstat(_draftPath.c_str(), &named) == 0 && ::fstat(_descriptor.number(), &ours) == 0 &&
         named.st_dev == ours.st_dev && named.st_ino == ours.st_ino;
}

}  // namespace marlune
