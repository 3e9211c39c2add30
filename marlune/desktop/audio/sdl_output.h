#ifndef MARLUNE_DESKTOP_AUDIO_SDL_OUTPUT_H_
#define MARLUNE_DESKTOP_AUDIO_SDL_OUTPUT_H_

#include <memory>
#include <optional>
#include <string>

#include "marlune/desktop/audio/audio_output.h"

namespace marlune {

// The default sound device, by way of SDL, at the rate and with the channels that the device
// prefers. Opening waits a moment for a sound server that does not answer, then gives up; closing
// never waits.
class SdlOutput : public AudioOutput {
 public:
  ~SdlOutput() override { close(); }

  std::optional<std::string> open(AudioSource& source, const std::string& role) override;
  void close() override;
  AudioFormat formatForClip(const AudioFormat&) override;
  std::size_t latencyFrames() const override;
  std::optional<std::string> loss() const override;
  std::optional<double> stallLimitSeconds() const override { return 2.0; }

 private:
  struct Device;
  std::shared_ptr<Device> _device;  // null while closed
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_SDL_OUTPUT_H_
