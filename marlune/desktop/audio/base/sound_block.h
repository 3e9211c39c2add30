#ifndef MARLUNE_DESKTOP_AUDIO_BASE_SOUND_BLOCK_H_
#define MARLUNE_DESKTOP_AUDIO_BASE_SOUND_BLOCK_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "marlune/desktop/audio/base/sound_cue.h"

namespace marlune {

// A piece of decoded sound that travels from the worker to the callback and back for reuse. Never
// contains sound of two recordings.
struct SoundBlock {
  static constexpr std::size_t kCapacityFrames = 2'048;

  // Interleaved; only the worker changes their size. One of the two is filled: sound that is read
  // and taken in the same format of 16 bits stays as it is.
  std::vector<float> samples;
  std::vector<short> shorts;
  bool hasShorts = false;
  std::size_t frames = 0;
  int channels = 0;
  std::shared_ptr<SoundCue> cue;    // of its recording; the callback only uses it
  std::uint32_t generation = 0;     // of the queue's contents; older blocks are obsolete
  bool endsItem = false;            // the last of its recording
  std::uint64_t missingFrames = 0;  // of its recording, as far as known
  // Set by the callback, which returns a block as soon as its last frame is taken or it is
  // obsolete.
  bool isTaken = false;
  std::uint64_t takenAt = 0;       // frames the output had taken by then, silence included
  std::uint64_t takenOpening = 0;  // the opening of the output that took it
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_BASE_SOUND_BLOCK_H_
