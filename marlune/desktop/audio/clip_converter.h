#ifndef MARLUNE_DESKTOP_AUDIO_CLIP_CONVERTER_H_
#define MARLUNE_DESKTOP_AUDIO_CLIP_CONVERTER_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "marlune/desktop/audio/audio_format.h"

struct soxr;

namespace marlune {

struct SoxrLibrary;

// Turns one clip into an output's format, piece by piece. What comes out in all is the clip's
// length at the output's rate, rounded to a frame. A clip that is in the output's format passes
// through untouched.
//
// A resampler takes what lies beyond a clip's ends for silence, so a clip that was cut out of
// running sound would come out with a dent at each end, and two of them would join with a step.
// Here the clip is lengthened at both ends by its own sound, turned about the end (odd reflection:
// value and slope go on), and what that adds is cut off again.
class ClipConverter {
 public:
  // Null when there is no resampling where it takes some, and then `cause` says why, as a clause.
  static std::unique_ptr<ClipConverter> make(const AudioFormat& from, const AudioFormat& to,
                                             std::string& cause);

  // Appends what `count` more frames of the clip yield, which may be nothing yet.
  void convert(const float* frames, std::size_t count, std::vector<float>& to);

  // The clip is over: appends the rest.
  void finish(std::vector<float>& to);

 private:
  ClipConverter(const AudioFormat& from, const AudioFormat& to) : _from(from), _to(to) {}
  bool _prepareResampling(std::string& cause);
  void _beginWith(const float* frames, std::size_t count);
  void _resample(const float* frames, std::size_t count);
  void _drain();
  void _handOut(bool isWhole, std::vector<float>& to);
  void _mapChannels(const float* frames, std::size_t count, std::vector<float>& to) const;
  std::size_t _channels() const { return static_cast<std::size_t>(_from.channels); }

  const AudioFormat _from;
  const AudioFormat _to;
  const SoxrLibrary* _library = nullptr;
  std::unique_ptr<soxr, void (*)(soxr*)> _resampler{nullptr, nullptr};  // none for the same rate
  std::size_t _margin = 0;        // frames that the clip is lengthened by at each end
  std::vector<float> _head;       // the clip's first frames, until there are enough to reflect
  bool _hasBegun = false;         // the reflected beginning has gone in
  std::vector<float> _tail;       // the clip's last _margin + 1 frames so far
  std::vector<float> _resampled;  // in the clip's channels, at the output's rate
  std::int64_t _taken = 0;        // frames of the clip that went in
  std::int64_t _toSkip = 0;       // frames still to be cut off at the beginning
  std::int64_t _handedOut = 0;    // frames that came out
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_CLIP_CONVERTER_H_
