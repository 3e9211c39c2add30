#ifndef MARLUNE_DESKTOP_AUDIO_AUDIO_OUTPUT_H_
#define MARLUNE_DESKTOP_AUDIO_AUDIO_OUTPUT_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "marlune/desktop/audio/audio_format.h"
#include "marlune/desktop/audio/audio_source.h"

namespace marlune {

// Something that takes sound at its own pace: a device, a file, a clock, a crank.
//
// Threads: opened and closed on the main thread; the other operations come from the engine's
// worker, never at the same time as an open or a close.
class AudioOutput {
 public:
  virtual ~AudioOutput() = default;

  // Starts taking frames from `source`, which the caller keeps alive until the output is closed.
  // `role` is what kind of sound it is to a sound server that turns others down for some kinds;
  // empty for a usual one. Returns what went wrong as a sentence; the output is then closed.
  virtual std::optional<std::string> open(AudioSource& source, const std::string& role) = 0;

  // From the return on, the source is not called any more. Closing a closed output does nothing.
  virtual void close() = 0;

  // The format that frames are taken in while it is open. An output that has no format of its own
  // yet takes that of `clip`, the first recording, and keeps it.
  virtual AudioFormat formatForClip(const AudioFormat& clip) = 0;

  // How many frames after it was taken a frame has been heard.
  virtual std::size_t latencyFrames() const { return 0; }

  // Why no sound comes out of the open output any more, as a sentence; nothing while it does.
  virtual std::optional<std::string> loss() const { return std::nullopt; }

  // After how long without taking a frame the output counts as stalled; nothing when it may take
  // its time.
  virtual std::optional<double> stallLimitSeconds() const { return std::nullopt; }

  // How many gaps the output has had since it was made: moments at which the device ran out of
  // sound, or must have, because frames were taken too late. Gaps in silence count, too. Never
  // falls; closing and opening keep it.
  virtual std::uint64_t gapCount() const { return 0; }

  // Tells that `frames` decoded frames wait. An output without a pace of its own takes them now;
  // zero of them still lets the source tidy up.
  virtual void takeAvailable(std::size_t frames) { static_cast<void>(frames); }
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_AUDIO_OUTPUT_H_
