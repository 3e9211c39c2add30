#ifndef MARLUNE_DESKTOP_AUDIO_BASE_SAMPLE_CONVERSION_H_
#define MARLUNE_DESKTOP_AUDIO_BASE_SAMPLE_CONVERSION_H_

#include <algorithm>

namespace marlune {

// Samples of 16 bits as floats and back. Full scale is 32768, so that what was read from 16 bits
// comes back as it was.
inline float floatFromShort(short sample) { return static_cast<float>(sample) / 32'768.0f; }

inline short shortFromFloat(float value) {
  // Added to a value and taken off again, it leaves a whole number: floats of its size have no
  // digits behind the point. This rounds as lrintf does, but several samples at once.
  constexpr float kRounder = 12'582'912.0f;  // 1.5 × 2^23
  const float scaled = std::clamp(value * 32'768.0f, -32'768.0f, 32'767.0f);
  return static_cast<short>(static_cast<int>(scaled + kRounder - kRounder));
}

inline short byteSwapped(short sample) {
  const auto bits = static_cast<unsigned short>(sample);
  return static_cast<short>(bits << 8 | bits >> 8);
}

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_BASE_SAMPLE_CONVERSION_H_
