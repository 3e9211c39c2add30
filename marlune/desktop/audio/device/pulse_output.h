#ifndef MARLUNE_DESKTOP_AUDIO_DEVICE_PULSE_OUTPUT_H_
#define MARLUNE_DESKTOP_AUDIO_DEVICE_PULSE_OUTPUT_H_

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "marlune/desktop/audio/output/audio_output.h"

namespace marlune {

class PulseStream;

// The default sink of a PulseAudio server (or PipeWire's), in stereo at the sink's rate. The role
// becomes the stream's media.role. Never starts a server. Opening waits `patienceSeconds` for a
// server that does not answer, then fails. Closing never waits and drops sound that has not been
// played.
class PulseOutput : public AudioOutput {
 public:
  // `bufferSeconds`: how much sound the server buffers. `patienceSeconds`: how long open waits for
  // the server.
  explicit PulseOutput(double bufferSeconds, double patienceSeconds = 2)
      : _bufferSeconds(bufferSeconds), _patienceSeconds(patienceSeconds) {}
  ~PulseOutput() override { close(); }

  std::optional<Failure> open(AudioSource& source, const std::string& role) override;
  void close() override;
  AudioFormat formatForClip(const AudioFormat& clip) override;
  std::size_t latencyFrames() const override;
  // Reports a server that died or a stream that was ended. A server that hangs counts as a stall.
  std::optional<Failure> loss() const override;
  // Longer than the two seconds that a sink without a device may render ahead at the opening.
  std::optional<double> stallLimitSeconds() const override { return 3.0; }
  // Counts the underflows reported by the server.
  std::uint64_t gapCount() const override { return _gaps->load(); }

  // Whether there was a server at the last opening. After a failure: whether the server refused or
  // did not answer. Main thread.
  bool hasFoundServer() const { return _hasFoundServer; }

 private:
  const double _bufferSeconds;
  const double _patienceSeconds;
  // Shared with the stream, which can outlive this output briefly.
  const std::shared_ptr<std::atomic<std::uint64_t>> _gaps =
      std::make_shared<std::atomic<std::uint64_t>>(0);
  std::shared_ptr<PulseStream> _stream;  // null while closed
  bool _hasFoundServer = false;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_DEVICE_PULSE_OUTPUT_H_
