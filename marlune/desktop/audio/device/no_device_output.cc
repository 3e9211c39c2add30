// The sound device in a build without one: every opening fails.

#include "marlune/desktop/audio/device/device_output.h"

namespace marlune {

namespace {

class NoDeviceOutput : public AudioOutput {
 public:
  std::optional<Failure> open(AudioSource&, const std::string&) override {
    return Failure::unavailable("This build has no sound device: it only renders to files.");
  }
  void close() override {}
  AudioFormat formatForClip(const AudioFormat& clip) override { return clip; }
};

}  // namespace

std::shared_ptr<AudioOutput> makeDeviceOutput(const DeviceOptions&) {
  return std::make_shared<NoDeviceOutput>();
}

}  // namespace marlune
