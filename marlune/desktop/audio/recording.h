#ifndef MARLUNE_DESKTOP_AUDIO_RECORDING_H_
#define MARLUNE_DESKTOP_AUDIO_RECORDING_H_

#include <sndfile.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "marlune/desktop/audio/aiff_header.h"
#include "marlune/desktop/audio/audio_format.h"
#include "marlune/desktop/audio/buffered_file.h"

namespace marlune {

// An .aif or .aifc file open for reading, from its first frame on. What a header claims is checked
// before anything is allocated by it: a corrupt file is refused or plays what it holds.
class Recording {
 public:
  // Null when the file cannot be played, and then `cause` says why, as a clause.
  static std::unique_ptr<Recording> open(const std::string& path, std::string& cause);

  const AudioFormat& format() const { return _format; }
  std::int64_t frameCount() const { return _frameCount; }
  double seconds() const { return static_cast<double>(_frameCount) / _format.sampleRate; }

  // How many frames the header announces beyond those that the file holds: it has been cut off.
  std::int64_t missingFrames() const { return _missingFrames; }

  // Whether the samples have 16 bits and can be read as they are.
  bool hasShorts() const { return _sound == nullptr; }
  // REQUIRES: hasShorts(). Otherwise like the read below.
  std::size_t read(short* frames, std::size_t count);

  // Reads up to `count` frames into `frames` (interleaved, in the recording's own format) and
  // returns how many there were; fewer only at the end, or where a truncated file breaks off.
  std::size_t read(float* frames, std::size_t count);

 private:
  struct Closer {
    void operator()(SNDFILE* file) const { sf_close(file); }
  };

  Recording() = default;
  std::optional<std::string> _openSound();
  std::optional<std::string> _openThroughLibrary();
  bool _openPlain(const AiffHeader& header);
  std::size_t _readPlain(float* frames, std::size_t count);

  std::unique_ptr<BufferedFile> _file;      // before _sound, which reads from it until it is closed
  std::unique_ptr<SNDFILE, Closer> _sound;  // none for plain samples of 16 bits
  AudioFormat _format;
  std::int64_t _frameCount = 0;
  std::int64_t _missingFrames = 0;
  std::int64_t _plainFramesLeft = 0;
  std::vector<short> _plain;  // between the file and floats
  bool _isSwapped = false;    // plain samples are in the other byte order than the machine's
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_RECORDING_H_
