#ifndef MARLUNE_DESKTOP_AUDIO_SOUND_BLOCK_H_
#define MARLUNE_DESKTOP_AUDIO_SOUND_BLOCK_H_

#include <cstddef>
#include <cstdint>
#include <vector>

namespace marlune {

// A piece of decoded sound on its way from the worker to the callback and back, to be filled anew.
// Never holds sound of two recordings.
struct SoundBlock {
  static constexpr std::size_t kCapacityFrames = 2'048;

  std::vector<float> samples;  // interleaved; only the worker changes its size
  std::size_t frames = 0;
  int channels = 0;
  std::uint32_t generation = 0;     // of the queue's content; an older one is no longer wanted
  bool endsItem = false;            // the last of its recording
  std::uint64_t missingFrames = 0;  // of its recording, as far as it has been read
  std::uint64_t finishedAt = 0;     // set by the callback: frames the output had taken by then
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_SOUND_BLOCK_H_
