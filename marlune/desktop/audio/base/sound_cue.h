#ifndef MARLUNE_DESKTOP_AUDIO_BASE_SOUND_CUE_H_
#define MARLUNE_DESKTOP_AUDIO_BASE_SOUND_CUE_H_

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace marlune {

// One decoding of one recording, shared by its blocks, the queue and the callback. Lets the queue
// take back sound that was sent, and shows how much of it was taken.
struct SoundCue {
  explicit SoundCue(std::uint64_t number) : serial(number) {}

  const std::uint64_t serial;  // counts up in the order in which recordings are sent

  // Set by the queue.
  std::atomic<bool> isRecalled = false;    // its blocks are not played, or not any further
  std::atomic<long> fadeFrames = kNoFade;  // it is to fade out within so many frames
  static constexpr long kNoFade = -1;

  // Set by the callback.
  std::atomic<std::uint64_t> begunAt = 0;  // frames the output had taken before its first one
  std::atomic<std::size_t> takenFrames = 0;
  std::atomic<bool> isTaken = false;  // to its end
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_BASE_SOUND_CUE_H_
