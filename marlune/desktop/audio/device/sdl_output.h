#ifndef MARLUNE_DESKTOP_AUDIO_DEVICE_SDL_OUTPUT_H_
#define MARLUNE_DESKTOP_AUDIO_DEVICE_SDL_OUTPUT_H_

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "marlune/desktop/audio/output/audio_output.h"

namespace marlune {

struct SdlLibrary;

// The default sound device through SDL, with the rate and channels that the device prefers. Ignores
// the role. Opening waits `patienceSeconds` for a device that does not answer, then fails. Closing
// never waits.
class SdlOutput : public AudioOutput {
 public:
  // Returns the library's functions. Called on another thread.
  using Loader = std::function<Result<const SdlLibrary*>()>;

  SdlOutput();
  // `patienceSeconds`: how long open waits for the device.
  SdlOutput(Loader load, double patienceSeconds)
      : _load(std::move(load)), _patienceSeconds(patienceSeconds) {}
  ~SdlOutput() override { close(); }

  std::optional<Failure> open(AudioSource& source, const std::string& role) override;
  void close() override;
  AudioFormat formatForClip(const AudioFormat&) override;
  std::size_t latencyFrames() const override;
  std::optional<Failure> loss() const override;
  std::optional<double> stallLimitSeconds() const override { return 2.0; }
  // Counts callbacks that came so late that the device must have run out of sound.
  std::uint64_t gapCount() const override { return _gaps->load(); }

 private:
  class Device;

  const Loader _load;
  const double _patienceSeconds;
  // Shared with the device, whose callback can outlive this output briefly.
  const std::shared_ptr<std::atomic<std::uint64_t>> _gaps =
      std::make_shared<std::atomic<std::uint64_t>>(0);
  std::shared_ptr<Device> _device;  // null while closed
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_DEVICE_SDL_OUTPUT_H_
