#ifndef MARLUNE_DESKTOP_AUDIO_BASE_AUDIO_FORMAT_H_
#define MARLUNE_DESKTOP_AUDIO_BASE_AUDIO_FORMAT_H_

#include "marlune/platform/visibility.h"

namespace marlune {

// The layout of sound. Samples are interleaved floats with full scale at 1, so samples of 24 bits
// or fewer survive the round trip unchanged.
struct MARLUNE_API AudioFormat {
  int sampleRate = 0;  // frames per second
  int channels = 0;    // samples per frame

  bool operator==(const AudioFormat&) const = default;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_BASE_AUDIO_FORMAT_H_
