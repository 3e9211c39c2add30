#include "marlune/desktop/audio/sdl_output.h"

#include <atomic>
#include <cstdlib>
#include <utility>

#include "marlune/desktop/audio/device_output.h"
#include "marlune/desktop/audio/patient_thread.h"
#include "marlune/desktop/audio/sdl_library.h"
#include "marlune/desktop/audio/source_gate.h"

namespace marlune {

namespace {

constexpr int kWantedRate = 48'000;
constexpr int kWantedChannels = 2;
constexpr int kBufferFrames = 1'024;
constexpr double kPatienceSeconds = 2;
// The buffer that is filled, the one that is played, and about as much again in a sound server.
constexpr std::size_t kBuffersUntilHeard = 4;

PatientThread& sdlThread() {
  static PatientThread* const thread = [] {
    // A process must not end in the middle of a close: the library's own end would pull the ground
    // from under it.
    std::atexit([] { sdlThread().waitUntilIdle(1); });
    return new PatientThread;
  }();
  return *thread;
}

// PulseAudio's library takes what its server is to know of a client from the environment. A value
// that the user has set is left alone.
void tellRole(const std::string& role) {
  static std::string* const ours = new std::string;
  const char* const value = std::getenv("PULSE_PROP");
  if (value && *ours != value) return;
  *ours = role.empty() ? "" : "media.role=" + role;
  if (role.empty()) {
    ::unsetenv("PULSE_PROP");
  } else {
    ::setenv("PULSE_PROP", ours->c_str(), /*overwrite=*/1);
  }
}

}  // namespace

// A device from its opening to its closing. Shared by the output and the thread that opens and
// closes it, since either can be the last to know it.
struct SdlOutput::Device {
  SourceGate gate;
  std::atomic<bool> isWanted = true;
  // Written while it is opened, read after that.
  const SdlLibrary* sdl = nullptr;
  SDL_AudioDeviceID id = 0;
  AudioFormat format;
  std::string error;

  bool open() {
    sdl = SdlLibrary::shared(error);
    if (!sdl) return false;
    if (sdl->initSubSystem(SDL_INIT_AUDIO) != 0) {
      error = sdl->getError();
      return false;
    }
    if (_openDevice()) return true;
    error = sdl->getError();
    sdl->quitSubSystem(SDL_INIT_AUDIO);
    return false;
  }

  void close() {
    if (id == 0) return;
    sdl->closeAudioDevice(std::exchange(id, 0));
    sdl->quitSubSystem(SDL_INIT_AUDIO);
  }

 private:
  bool _openDevice() {
    SDL_AudioSpec wanted = {};
    wanted.freq = kWantedRate;
    wanted.format = AUDIO_F32SYS;
    wanted.channels = kWantedChannels;
    wanted.samples = kBufferFrames;
    wanted.callback = &_callback;
    wanted.userdata = this;
    SDL_AudioSpec got = {};
    id = sdl->openAudioDevice(nullptr, 0, &wanted, &got,
                              SDL_AUDIO_ALLOW_FREQUENCY_CHANGE | SDL_AUDIO_ALLOW_CHANNELS_CHANGE);
    if (id == 0) return false;
    format = {got.freq, got.channels};
    sdl->pauseAudioDevice(id, 0);
    return true;
  }

  static void _callback(void* user, Uint8* bytes, int count) {
    Device& device = *static_cast<Device*>(user);
    const int channels = device.format.channels;
    const auto frames =
        static_cast<std::size_t>(count) / sizeof(float) / static_cast<std::size_t>(channels);
    device.gate.render(reinterpret_cast<float*>(bytes), frames, channels);
  }
};

std::optional<std::string> SdlOutput::open(AudioSource& source, const std::string& role) {
  close();
  tellRole(role);
  const auto device = std::make_shared<Device>();
  device->gate.setSource(&source);
  const bool hasAnswered = sdlThread().runWithin(kPatienceSeconds, [device] {
    if (device->isWanted.load()) device->open();
    if (!device->isWanted.load()) device->close();
  });
  if (hasAnswered && device->id != 0) {
    _device = device;
    return std::nullopt;
  }
  device->isWanted.store(false);
  device->gate.setSource(nullptr);
  if (!hasAnswered) return "The sound device does not answer.";
  return "There is no sound device: " + device->error + ".";
}

void SdlOutput::close() {
  if (!_device) return;
  _device->gate.setSource(nullptr);
  sdlThread().runWithin(0, [device = std::move(_device)] { device->close(); });
}

AudioFormat SdlOutput::formatForClip(const AudioFormat& clip) {
  return _device ? _device->format : clip;
}

std::size_t SdlOutput::latencyFrames() const { return kBuffersUntilHeard * kBufferFrames; }

// Asked rather than waited for: the event that tells of a removal comes on another thread, and not
// for every kind of loss.
std::optional<std::string> SdlOutput::loss() const {
  if (!_device || _device->sdl->getAudioDeviceStatus(_device->id) != SDL_AUDIO_STOPPED) {
    return std::nullopt;
  }
  return "The sound device is gone.";
}

std::shared_ptr<AudioOutput> makeDeviceOutput() { return std::make_shared<SdlOutput>(); }

}  // namespace marlune
