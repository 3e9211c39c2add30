#ifndef MARLUNE_DESKTOP_AUDIO_BUFFERED_FILE_H_
#define MARLUNE_DESKTOP_AUDIO_BUFFERED_FILE_H_

#include <sndfile.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace marlune {

// A regular file behind one buffer, in the form in which libsndfile takes a file that it did not
// open itself. The library reads headers field by field, a system call or two each; with the
// buffer in between a short recording costs one read.
class BufferedFile {
 public:
  // Opens for reading. Null when that fails or when the path leads to something other than a
  // regular file, and then `cause` says why. Never blocks on a FIFO or a device.
  static std::unique_ptr<BufferedFile> open(const std::string& path, std::string& cause);

  ~BufferedFile();
  BufferedFile(const BufferedFile&) = delete;
  BufferedFile& operator=(const BufferedFile&) = delete;

  sf_count_t size() const { return _size; }  // in bytes
  sf_count_t read(void* bytes, sf_count_t count);
  sf_count_t seek(sf_count_t offset, int whence);
  sf_count_t position() const { return _position; }

  // The operations above as libsndfile wants them; its user data is the BufferedFile.
  static SF_VIRTUAL_IO& operations();

 private:
  explicit BufferedFile(int descriptor) : _descriptor(descriptor) {}
  bool _fill();

  int _descriptor;
  sf_count_t _size = 0;
  sf_count_t _position = 0;
  std::vector<char> _buffer;  // the bytes of the file from _start on
  sf_count_t _start = 0;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_BUFFERED_FILE_H_
