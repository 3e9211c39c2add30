#ifndef MARLUNE_DESKTOP_AUDIO_OUTPUT_CRANKED_OUTPUT_H_
#define MARLUNE_DESKTOP_AUDIO_OUTPUT_CRANKED_OUTPUT_H_

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "marlune/desktop/audio/output/audio_output.h"

namespace marlune {

// A manual output: it takes sound, and fails, only on request. For tests, and for programs that mix
// the sound themselves.
//
// Threads: as for AudioOutput; everything else on the thread that opens it.
class CrankedOutput : public AudioOutput {
 public:
  explicit CrankedOutput(AudioFormat format) : _format(format) {}

  // Takes `count` frames and returns their samples; empty while closed.
  std::vector<float> crank(std::size_t count);

  // Like crank, into `frames`, which has room for them. Does not allocate. Returns how many frames
  // were sound.
  std::size_t crankInto(float* frames, std::size_t count);

  bool isOpen() const { return _source != nullptr; }
  int timesOpened() const { return _timesOpened; }
  const std::string& role() const { return _role; }  // of the last opening

  // Sets the behaviour. A loss lasts until the next opening, a refusal until it is withdrawn. With
  // a stall limit of 0 the output counts as stalled at every check.
  void lose(std::string reason);
  void refuse(std::string reason) { _refusal = Failure::unavailable(std::move(reason)); }
  void stopRefusing() { _refusal.reset(); }
  void setFormat(AudioFormat format) { _format = format; }                // while closed
  void setLatencyFrames(std::size_t frames) { _latencyFrames = frames; }  // while closed
  void setStallLimitSeconds(double seconds);
  void addGap() { _gaps.fetch_add(1); }

  std::optional<Failure> open(AudioSource& source, const std::string& role) override;
  void close() override { _source = nullptr; }
  AudioFormat formatForClip(const AudioFormat&) override { return _format; }
  std::size_t latencyFrames() const override { return _latencyFrames; }
  std::optional<Failure> loss() const override;
  std::optional<double> stallLimitSeconds() const override;
  std::uint64_t gapCount() const override { return _gaps.load(); }

 private:
  AudioFormat _format;
  AudioSource* _source = nullptr;
  std::string _role;
  int _timesOpened = 0;
  std::size_t _latencyFrames = 0;
  std::optional<Failure> _refusal;
  std::atomic<std::uint64_t> _gaps = 0;
  mutable std::mutex _mutex;  // guards all below, which the worker reads
  std::optional<double> _stallLimitSeconds;
  std::optional<Failure> _loss;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_OUTPUT_CRANKED_OUTPUT_H_
