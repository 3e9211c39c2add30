#ifndef MARLUNE_DESKTOP_AUDIO_RECORDING_CLIP_CONVERTER_H_
#define MARLUNE_DESKTOP_AUDIO_RECORDING_CLIP_CONVERTER_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "marlune/desktop/audio/base/audio_format.h"
#include "marlune/platform/failure.h"

struct soxr;

namespace marlune {

struct SoxrLibrary;

// Converts one clip to an output's format, piece by piece. The result has the clip's length at the
// output's rate, rounded to a frame. A clip that already has the output's format is passed through
// unchanged.
//
// A resampler assumes silence beyond a clip's ends, so a clip cut from continuous sound would get a
// dent at each end, and two joined clips a step between them. To avoid that, the converter extends
// the clip at both ends by odd reflection, which continues value and slope, and removes the
// resampled extension again.
class ClipConverter {
 public:
  // Fails, with a clause, if resampling is needed but not available.
  static Result<std::unique_ptr<ClipConverter>> make(const AudioFormat& from,
                                                     const AudioFormat& to);

  // Appends the output for the next `count` frames of the clip, which may be none yet.
  void convert(const float* frames, std::size_t count, std::vector<float>& to);

  // Ends the clip: appends the rest of the output.
  void finish(std::vector<float>& to);

 private:
  ClipConverter(const AudioFormat& from, const AudioFormat& to) : _from(from), _to(to) {}
  std::optional<Failure> _prepareResampling();
  void _beginWith(const float* frames, std::size_t count);
  void _resample(const float* frames, std::size_t count);
  void _drain();
  void _handOut(bool isWhole, std::vector<float>& to);
  void _mapChannels(const float* frames, std::size_t count, std::vector<float>& to) const;
  std::size_t _channels() const { return static_cast<std::size_t>(_from.channels); }

  const AudioFormat _from;
  const AudioFormat _to;
  const SoxrLibrary* _library = nullptr;
  std::unique_ptr<soxr, void (*)(soxr*)> _resampler{nullptr, nullptr};  // null for equal rates
  std::size_t _margin = 0;        // frames added to the clip at each end
  std::vector<float> _head;       // the first frames of the clip, until there are enough to reflect
  bool _hasBegun = false;         // the reflected beginning has been resampled
  std::vector<float> _tail;       // the last _margin + 1 frames received
  std::vector<float> _resampled;  // in the clip's channels, at the output's rate
  std::int64_t _taken = 0;        // frames of the clip received
  std::int64_t _toSkip = 0;       // output frames still to be dropped at the beginning
  std::int64_t _handedOut = 0;    // output frames produced
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_RECORDING_CLIP_CONVERTER_H_
