#ifndef MARLUNE_DESKTOP_AUDIO_OUTPUT_CLOCK_OUTPUT_H_
#define MARLUNE_DESKTOP_AUDIO_OUTPUT_CLOCK_OUTPUT_H_

#include <atomic>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <thread>

#include "marlune/desktop/audio/output/audio_output.h"

namespace marlune {

// Takes sound in real time, like a device that is never late, and passes it to a listener or drops
// it. For machines without a sound device, and for measurements.
//
// Threads: as for AudioOutput; the listener is called on a thread of the output.
class ClockOutput : public AudioOutput {
 public:
  // Receives `count` interleaved frames per period, of which the first `sounding` are sound. Called
  // on the clock's own thread.
  using Listener =
      std::function<void(const float* frames, std::size_t count, std::size_t sounding)>;

  // `speed` 1 is real time, 2 is twice as fast. `listener` may be null.
  explicit ClockOutput(AudioFormat format, Listener listener = nullptr, double speed = 1,
                       std::size_t periodFrames = 256);
  ~ClockOutput() override { close(); }

  std::optional<Failure> open(AudioSource& source, const std::string& role) override;
  void close() override;
  AudioFormat formatForClip(const AudioFormat&) override { return _format; }
  std::optional<double> stallLimitSeconds() const override { return 2.0; }
  std::optional<Failure> loss() const override;

  // Stops the clock and reports a loss, as when a device is unplugged. The next opening clears the
  // loss. Any thread.
  void lose() { _isLost.store(true); }

 private:
  void _run(AudioSource& source);

  const AudioFormat _format;
  const Listener _listener;
  const double _speed;
  const std::size_t _periodFrames;
  std::atomic<bool> _isOpen = false;
  std::atomic<bool> _isLost = false;
  std::thread _thread;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_OUTPUT_CLOCK_OUTPUT_H_
