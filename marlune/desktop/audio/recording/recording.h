#ifndef MARLUNE_DESKTOP_AUDIO_RECORDING_RECORDING_H_
#define MARLUNE_DESKTOP_AUDIO_RECORDING_RECORDING_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "marlune/desktop/audio/base/audio_format.h"
#include "marlune/desktop/audio/recording/aiff_header.h"
#include "marlune/desktop/audio/recording/buffered_file.h"
#include "marlune/platform/failure.h"
#include "marlune/platform/visibility.h"

namespace marlune {

class SndfileReader;

// An .aif or .aifc file, open for reading from its first frame. Header values are checked before
// they determine an allocation: a corrupt file is refused, or plays as far as its data goes.
class MARLUNE_INTERNAL_API Recording {
 public:
  // Fails, with a clause, if the file cannot be played.
  static Result<std::unique_ptr<Recording>> open(const std::string& path);

  ~Recording();

  const AudioFormat& format() const { return _format; }
  std::int64_t frameCount() const { return _frameCount; }
  double seconds() const { return static_cast<double>(_frameCount) / _format.sampleRate; }

  // Frames that the header promises but the file lacks; more than 0 if the file is truncated.
  std::int64_t missingFrames() const { return _missingFrames; }

  // Whether the file has 16-bit samples that need no conversion.
  bool hasShorts() const { return _sound == nullptr; }
  // REQUIRES: hasShorts(). Otherwise like the read below.
  std::size_t read(short* frames, std::size_t count);

  // Reads up to `count` frames into `frames` (interleaved, in the recording's own format) and
  // returns the number read. It is smaller only at the end of the file, or where a truncated file
  // stops.
  std::size_t read(float* frames, std::size_t count);

 private:
  Recording();
  std::optional<Failure> _openSound();
  std::optional<Failure> _openThroughLibrary();
  bool _openPlain(const AiffHeader& header);
  std::size_t _readPlain(float* frames, std::size_t count);

  std::unique_ptr<BufferedFile> _file;    // declared before _sound, which uses it
  std::unique_ptr<SndfileReader> _sound;  // null for plain 16-bit samples
  AudioFormat _format;
  std::int64_t _frameCount = 0;
  std::int64_t _missingFrames = 0;
  std::int64_t _plainFramesLeft = 0;
  std::vector<short> _plain;  // samples on their way to floats
  bool _isSwapped = false;    // the file's byte order is not the machine's
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_RECORDING_RECORDING_H_
