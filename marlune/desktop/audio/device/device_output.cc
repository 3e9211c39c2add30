#include "marlune/desktop/audio/device/device_output.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "marlune/desktop/audio/device/pulse_output.h"
#include "marlune/desktop/audio/device/sdl_output.h"

namespace marlune {

namespace {

constexpr double kMinBufferSeconds = 0.01;
constexpr double kMaxBufferSeconds = 2;

bool isOtherDriverChosen() {
  const char* const driver = std::getenv("SDL_AUDIODRIVER");
  return driver && *driver && std::string_view(driver) != "pulseaudio";
}

// NaN becomes the minimum.
double boundedBuffer(double seconds) {
  return seconds > kMinBufferSeconds ? std::min(seconds, kMaxBufferSeconds) : kMinBufferSeconds;
}

// Uses the first output that can be opened; tries again at each opening.
class DeviceOutput : public AudioOutput {
 public:
  explicit DeviceOutput(const DeviceOptions& options)
      : _pulse(boundedBuffer(options.bufferSeconds)) {}

  std::optional<Failure> open(AudioSource& source, const std::string& role) override {
    close();
    if (!isOtherDriverChosen()) {
      _current = &_pulse;
      std::optional<Failure> error = _pulse.open(source, role);
      if (!error || _pulse.hasFoundServer()) return error;
    }
    _current = &_sdl;
    return _sdl.open(source, role);
  }

  void close() override { _current->close(); }
  AudioFormat formatForClip(const AudioFormat& clip) override {
    return _current->formatForClip(clip);
  }
  std::size_t latencyFrames() const override { return _current->latencyFrames(); }
  std::optional<Failure> loss() const override { return _current->loss(); }
  std::optional<double> stallLimitSeconds() const override { return _current->stallLimitSeconds(); }
  std::uint64_t gapCount() const override { return _pulse.gapCount() + _sdl.gapCount(); }

 private:
  PulseOutput _pulse;
  SdlOutput _sdl;
  AudioOutput* _current = &_pulse;
};

}  // namespace

std::shared_ptr<AudioOutput> makeDeviceOutput(const DeviceOptions& options) {
  return std::make_shared<DeviceOutput>(options);
}

}  // namespace marlune
