#ifndef MARLUNE_DESKTOP_AUDIO_RECORDING_CLIP_DECODER_H_
#define MARLUNE_DESKTOP_AUDIO_RECORDING_CLIP_DECODER_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "marlune/desktop/audio/base/sound_block.h"
#include "marlune/desktop/audio/recording/clip_converter.h"
#include "marlune/desktop/audio/recording/recording.h"

namespace marlune {

// Decodes one recording into blocks in the output's format. Buffers only a few blocks of sound,
// however long the recording is.
class ClipDecoder {
 public:
  // `recording`, if not null, is the file at the path, already open and unread. Fails, with a
  // clause, if the file cannot be played.
  static Result<std::unique_ptr<ClipDecoder>> open(const std::string& path,
                                                   std::unique_ptr<Recording> recording = nullptr);

  // Decodes silence, of this format.
  static std::unique_ptr<ClipDecoder> silence(double seconds, const AudioFormat& format);

  const AudioFormat& clipFormat() const { return _format; }
  double seconds() const { return _seconds; }

  // Sets the output format; call once, before fill. Fails, with a clause, if the clip cannot be
  // converted.
  std::optional<Failure> convertTo(const AudioFormat& format);

  // Fills `block`: samples, frames, channels and whether it ends the item. The end is marked on the
  // last block with sound, not on an empty block after it; if the file is truncated, that call logs
  // a line.
  void fill(SoundBlock& block);

  // Frames that the file's header promises but the file lacks. Known after the last block.
  std::uint64_t missingFrames() const { return _missingFrames; }

 private:
  ClipDecoder(std::string path, std::unique_ptr<Recording> recording, const AudioFormat& format,
              double seconds);
  void _fillSilence(SoundBlock& block);
  void _readMore();
  void _copy(SoundBlock& block);
  void _convert(SoundBlock& block);
  void _count(std::size_t framesRead);
  void _reportMissing() const;

  const std::string _path;
  const AudioFormat _format;
  const double _seconds;
  std::unique_ptr<Recording> _recording;  // null: silence
  std::uint64_t _silentFrames = 0;        // still to be decoded
  std::unique_ptr<ClipConverter> _converter;
  std::size_t _channels = 0;      // of the output
  std::vector<float> _read;       // as read, in the clip's format
  std::vector<float> _converted;  // in the output's format, from sample _handedOut
  std::size_t _handedOut = 0;
  bool _isRead = false;
  bool _isCopied = false;  // nothing to convert: 16-bit samples are passed on unchanged
  std::uint64_t _framesRead = 0;
  std::uint64_t _missingFrames;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_RECORDING_CLIP_DECODER_H_
