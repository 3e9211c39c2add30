#ifndef MARLUNE_DESKTOP_AUDIO_PULSE_OUTPUT_H_
#define MARLUNE_DESKTOP_AUDIO_PULSE_OUTPUT_H_

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "marlune/desktop/audio/audio_output.h"

namespace marlune {

class PulseStream;

// The default sink of a PulseAudio server (PipeWire's included), in stereo at the sink's rate. The
// role becomes the stream's media.role. Uses a server that runs and never starts one. Opening waits
// a moment for a server that does not answer, then gives up; closing never waits, and drops what
// has not been played.
class PulseOutput : public AudioOutput {
 public:
  // `bufferSeconds`: how much sound the server holds ahead. `patienceSeconds`: how long an opening
  // waits for the server.
  explicit PulseOutput(double bufferSeconds, double patienceSeconds = 2)
      : _bufferSeconds(bufferSeconds), _patienceSeconds(patienceSeconds) {}
  ~PulseOutput() override { close(); }

  std::optional<std::string> open(AudioSource& source, const std::string& role) override;
  void close() override;
  AudioFormat formatForClip(const AudioFormat& clip) override;
  std::size_t latencyFrames() const override;
  // A server that died or a stream that was ended. A server that hangs is a stall.
  std::optional<std::string> loss() const override;
  // More than the two seconds that a sink without a device may have rendered ahead at the opening.
  std::optional<double> stallLimitSeconds() const override { return 3.0; }
  // Counts the underflows that the server reports.
  std::uint64_t gapCount() const override { return _gaps->load(); }

  // Whether there was a server at the last opening. After one that failed: whether it was the
  // server that refused, or did not answer. Main thread.
  bool hasFoundServer() const { return _hasFoundServer; }

 private:
  const double _bufferSeconds;
  const double _patienceSeconds;
  // Shared with the stream, which can outlive this output for a moment.
  const std::shared_ptr<std::atomic<std::uint64_t>> _gaps =
      std::make_shared<std::atomic<std::uint64_t>>(0);
  std::shared_ptr<PulseStream> _stream;  // null while closed
  bool _hasFoundServer = false;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_PULSE_OUTPUT_H_
