#ifndef MARLUNE_TOOLS_MARLUNE_SPEAKING_WATCHED_OUTPUT_H_
#define MARLUNE_TOOLS_MARLUNE_SPEAKING_WATCHED_OUTPUT_H_

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "marlune/desktop/audio/output/audio_output.h"

namespace marlune::tool {

// An output that remembers its first failure. The player only logs failures and continues.
class WatchedOutput : public AudioOutput {
 public:
  explicit WatchedOutput(std::shared_ptr<AudioOutput> output) : _output(std::move(output)) {}

  // The first failure to open, or loss up to the closing, since takeFailure was last called, as a
  // sentence. Any thread.
  std::optional<Failure> failure() const;
  std::optional<Failure> takeFailure();

  // Whether an open has ever succeeded. Main thread.
  bool hasOpened() const { return _hasOpened; }

  std::optional<Failure> open(AudioSource& source, const std::string& role) override;
  void close() override;
  AudioFormat formatForClip(const AudioFormat& clip) override {
    return _output->formatForClip(clip);
  }
  std::size_t latencyFrames() const override { return _output->latencyFrames(); }
  std::optional<Failure> loss() const override;
  std::optional<double> stallLimitSeconds() const override { return _output->stallLimitSeconds(); }
  std::uint64_t gapCount() const override { return _output->gapCount(); }
  void takeAvailable(std::size_t frames) override { _output->takeAvailable(frames); }

 private:
  std::optional<Failure> _noted(std::optional<Failure> failure) const;

  const std::shared_ptr<AudioOutput> _output;
  mutable std::mutex _mutex;
  mutable std::optional<Failure> _failure;
  bool _hasOpened = false;
};

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_SPEAKING_WATCHED_OUTPUT_H_
