#ifndef MARLUNE_DESKTOP_AUDIO_OUTPUT_AUDIO_SOURCE_H_
#define MARLUNE_DESKTOP_AUDIO_OUTPUT_AUDIO_SOURCE_H_

#include <cstddef>

#include "marlune/platform/visibility.h"

namespace marlune {

// A source of sound for an output.
class MARLUNE_API AudioSource {
 public:
  virtual ~AudioSource() = default;

  // Fills `count` frames of `channels` interleaved samples. Returns how many of them, from the
  // first, are sound; the rest is silence. Called by one thread at a time, usually the device's
  // own. It takes no lock, does not allocate or free, and never waits.
  virtual std::size_t render(float* frames, std::size_t count, int channels) noexcept = 0;

  // The same with 16-bit samples, for outputs that take those. This default renders floats and
  // rounds them.
  virtual std::size_t renderShorts(short* frames, std::size_t count, int channels) noexcept;

  // Notifies the source that frames were taken, so that it can proceed at once instead of at its
  // next poll. Only for outputs whose thread may take a lock; a device's thread must not call it.
  virtual void rendered() {}
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_OUTPUT_AUDIO_SOURCE_H_
