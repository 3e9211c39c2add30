#ifndef MARLUNE_DESKTOP_AUDIO_BUFFERED_FILE_H_
#define MARLUNE_DESKTOP_AUDIO_BUFFERED_FILE_H_

#include <sndfile.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace marlune {

// A regular file with one buffer, as virtual I/O for libsndfile. The library reads headers field by
// field, with one or two system calls each; through the buffer a short recording takes one read.
class BufferedFile {
 public:
  // Opens the file for reading. Returns null and sets `cause` if that fails or if the path does not
  // lead to a regular file. Never blocks on a FIFO or a device.
  static std::unique_ptr<BufferedFile> open(const std::string& path, std::string& cause);

  ~BufferedFile();
  BufferedFile(const BufferedFile&) = delete;
  BufferedFile& operator=(const BufferedFile&) = delete;

  sf_count_t size() const { return _size; }  // in bytes
  sf_count_t read(void* bytes, sf_count_t count);
  sf_count_t seek(sf_count_t offset, int whence);
  sf_count_t position() const { return _position; }

  // The operations above as libsndfile's table; its user data is the BufferedFile.
  static SF_VIRTUAL_IO& operations();

 private:
  explicit BufferedFile(int descriptor) : _descriptor(descriptor) {}
  bool _fill();

  int _descriptor;
  sf_count_t _size = 0;
  sf_count_t _position = 0;
  std::vector<char> _buffer;  // bytes of the file from _start
  sf_count_t _start = 0;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_BUFFERED_FILE_H_
