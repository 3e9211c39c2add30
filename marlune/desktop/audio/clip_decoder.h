#ifndef MARLUNE_DESKTOP_AUDIO_CLIP_DECODER_H_
#define MARLUNE_DESKTOP_AUDIO_CLIP_DECODER_H_

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "marlune/desktop/audio/clip_converter.h"
#include "marlune/desktop/audio/file_player_item.h"
#include "marlune/desktop/audio/recording.h"
#include "marlune/desktop/audio/sound_block.h"

namespace marlune {

// One recording on its way into blocks of the output's format. Holds a few blocks' worth of sound
// at a time, however long the recording is.
class ClipDecoder {
 public:
  // Null when the file cannot be played, and then `cause` says why, as a clause.
  static std::unique_ptr<ClipDecoder> open(const std::string& path, std::string& cause);
  // Of the recording that the item brings along, if it does, or else of the file at its path.
  static std::unique_ptr<ClipDecoder> open(FilePlayerItem& item, std::string& cause);

  const AudioFormat& clipFormat() const { return _recording->format(); }

  // Once, before anything is filled: `format` is that of the output. False when the clip cannot be
  // brought into it, and then `cause` says why, as a clause.
  bool convertTo(const AudioFormat& format, std::string& cause);

  // Fills `block`: its samples, frames, channels and whether it ends the item, which is told with
  // the last block that holds sound, not with an empty one behind it. With that block of a file
  // that was cut off goes a line in the log.
  void fill(SoundBlock& block);

  // How many frames the file's header announces and its end lacks. Known with the last block.
  std::uint64_t missingFrames() const { return _missingFrames; }

 private:
  ClipDecoder(std::string path, std::unique_ptr<Recording> recording);
  void _readMore();
  void _copy(SoundBlock& block);
  void _convert(SoundBlock& block);
  void _count(std::size_t framesRead);
  void _reportMissing() const;

  const std::string _path;
  std::unique_ptr<Recording> _recording;
  std::unique_ptr<ClipConverter> _converter;
  std::size_t _channels = 0;      // of the output
  std::vector<float> _read;       // as read, in the clip's format
  std::vector<float> _converted;  // in the output's format, from sample _handedOut on
  std::size_t _handedOut = 0;
  bool _isRead = false;
  bool _isCopied = false;  // nothing to convert: samples of 16 bits stay as they are
  std::uint64_t _framesRead = 0;
  std::uint64_t _missingFrames;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_CLIP_DECODER_H_
