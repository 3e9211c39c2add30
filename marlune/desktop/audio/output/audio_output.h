#ifndef MARLUNE_DESKTOP_AUDIO_OUTPUT_AUDIO_OUTPUT_H_
#define MARLUNE_DESKTOP_AUDIO_OUTPUT_AUDIO_OUTPUT_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "marlune/desktop/audio/base/audio_format.h"
#include "marlune/desktop/audio/output/audio_source.h"
#include "marlune/platform/failure.h"
#include "marlune/platform/visibility.h"

namespace marlune {

// An output that takes sound at its own pace: a device, a file, a clock, or a manual one.
//
// Threads: open and close are called on the main thread. The other operations are called by the
// engine's worker, never while an open or close is in progress.
class MARLUNE_API AudioOutput {
 public:
  virtual ~AudioOutput() = default;

  // Starts taking frames from `source`, which the caller keeps alive until the output is closed.
  // `role` tells a sound server which kind of sound this is, as servers duck other programs for
  // some kinds; empty for ordinary sound. After a failure, whose message is a whole sentence, the
  // output is closed.
  virtual std::optional<Failure> open(AudioSource& source, const std::string& role) = 0;

  // The source is not called after this returns. Closing a closed output does nothing.
  virtual void close() = 0;

  // The format in which frames are taken while the output is open. An output without a format of
  // its own adopts that of `clip`, the first recording, and keeps it.
  virtual AudioFormat formatForClip(const AudioFormat& clip) = 0;

  // Output latency: frames from being taken to being audible.
  virtual std::size_t latencyFrames() const { return 0; }

  // Why the open output no longer produces sound, in whole sentences; nothing while it works.
  virtual std::optional<Failure> loss() const { return std::nullopt; }

  // The output counts as stalled after this long without taking a frame. None: no time limit.
  virtual std::optional<double> stallLimitSeconds() const { return std::nullopt; }

  // The number of gaps since the output was created: times when the device ran out of sound, or
  // must have, because frames were taken too late. Includes gaps in silence. Never decreases;
  // closing and opening do not reset it.
  virtual std::uint64_t gapCount() const { return 0; }

  // `frames` decoded frames are available. An output without a pace of its own takes them now; with
  // zero frames the source can still release its used blocks.
  virtual void takeAvailable(std::size_t frames) { static_cast<void>(frames); }
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_OUTPUT_AUDIO_OUTPUT_H_
