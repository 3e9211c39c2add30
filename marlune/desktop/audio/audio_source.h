#ifndef MARLUNE_DESKTOP_AUDIO_AUDIO_SOURCE_H_
#define MARLUNE_DESKTOP_AUDIO_AUDIO_SOURCE_H_

#include <cstddef>

namespace marlune {

// Where an output gets its sound from.
class AudioSource {
 public:
  virtual ~AudioSource() = default;

  // Fills `count` frames of `channels` interleaved samples and returns how many of them, from the
  // first on, are sound; the rest is silence. Called by one thread at a time, the device's own as
  // a rule: takes no lock, allocates and frees nothing, never waits.
  virtual std::size_t render(float* frames, std::size_t count, int channels) noexcept = 0;

  // The same with samples of 16 bits, for outputs that take those. This one renders floats and
  // rounds them.
  virtual std::size_t renderShorts(short* frames, std::size_t count, int channels) noexcept;

  // Tells the source that its frames have been taken, so that it can go on at once instead of when
  // it looks next. For outputs whose thread may take a lock; a device's must not call it.
  virtual void rendered() {}
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_AUDIO_SOURCE_H_
