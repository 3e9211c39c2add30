#include "marlune/desktop/audio/device/sdl_output.h"

#include <chrono>
#include <utility>

#include "marlune/desktop/audio/device/device_handover.h"
#include "marlune/desktop/audio/device/patient_thread.h"
#include "marlune/desktop/audio/device/sdl_library.h"
#include "marlune/desktop/audio/output/source_gate.h"

namespace marlune {

namespace {

constexpr int kWantedRate = 48'000;
constexpr int kWantedChannels = 2;
constexpr int kBufferFrames = 1'024;
constexpr double kPatienceSeconds = 2;
// The buffer being filled, the one being played, and about as much again in a sound server.
constexpr std::size_t kBuffersUntilHeard = 4;
// After a callback returns, the device holds at most this many buffers of sound.
constexpr int kBuffersAhead = 2;

}  // namespace

// One device, from opening to closing. Shared by the output and the device thread, because either
// can be the last to use it.
class SdlOutput::Device {
 public:
  Device(Loader load, AudioSource& source, std::shared_ptr<std::atomic<std::uint64_t>> gaps)
      : _load(std::move(load)), _gaps(std::move(gaps)) {
    gate.setSource(&source);
  }

  // Device thread.
  void openFor(DeviceHandover& caller) {
    if (!caller.isGivenUp()) _open();
    if (!caller.offer()) close();
  }

  // Device thread.
  void close() {
    if (_id == 0) return;
    _sdl->closeAudioDevice(std::exchange(_id, 0));
    _sdl->quitSubSystem(SDL_INIT_AUDIO);
  }

  // Only for the side that has accepted the device.
  bool isOpen() const { return _id != 0; }
  const std::string& error() const { return _error; }
  const AudioFormat& format() const { return _format; }
  bool isStopped() const { return _sdl->getAudioDeviceStatus(_id) == SDL_AUDIO_STOPPED; }

  SourceGate gate;

 private:
  using Clock = std::chrono::steady_clock;

  void _open() {
    const auto library = _load();
    if (!library.succeeded()) {
      _error = library.failure().message;
      return;
    }
    _sdl = library.value();
    if (_sdl->initSubSystem(SDL_INIT_AUDIO) != 0) {
      _error = _sdl->getError();
      return;
    }
    if (_openDevice()) return;
    _error = _sdl->getError();
    _sdl->quitSubSystem(SDL_INIT_AUDIO);
  }

  bool _openDevice() {
    SDL_AudioSpec wanted = {};
    wanted.freq = kWantedRate;
    wanted.format = AUDIO_F32SYS;
    wanted.channels = kWantedChannels;
    wanted.samples = kBufferFrames;
    wanted.callback = &_callback;
    wanted.userdata = this;
    SDL_AudioSpec got = {};
    _id = _sdl->openAudioDevice(nullptr, 0, &wanted, &got,
                                SDL_AUDIO_ALLOW_FREQUENCY_CHANGE | SDL_AUDIO_ALLOW_CHANNELS_CHANGE);
    if (_id == 0) return false;
    _format = {got.freq, got.channels};
    _sdl->pauseAudioDevice(_id, 0);
    return true;
  }

  static void _callback(void* user, Uint8* bytes, int count) {
    Device& device = *static_cast<Device*>(user);
    const int channels = device._format.channels;
    const auto frames =
        static_cast<std::size_t>(count) / sizeof(float) / static_cast<std::size_t>(channels);
    device._countIfLate(frames);
    device.gate.render(reinterpret_cast<float*>(bytes), frames, channels);
  }

  // Callback thread.
  void _countIfLate(std::size_t frames) {
    const Clock::time_point now = Clock::now();
    const std::chrono::duration<double> buffer(static_cast<double>(frames) / _format.sampleRate);
    if (_lastCallback && now - *_lastCallback > kBuffersAhead * buffer) _gaps->fetch_add(1);
    _lastCallback = now;
  }

  const Loader _load;
  const std::shared_ptr<std::atomic<std::uint64_t>> _gaps;
  // Written during opening, read-only afterwards.
  const SdlLibrary* _sdl = nullptr;
  SDL_AudioDeviceID _id = 0;
  AudioFormat _format;
  std::string _error;
  // Used by the callback only.
  std::optional<Clock::time_point> _lastCallback;
};

SdlOutput::SdlOutput() : SdlOutput(&SdlLibrary::shared, kPatienceSeconds) {}

std::optional<Failure> SdlOutput::open(AudioSource& source, const std::string&) {
  close();
  const auto device = std::make_shared<Device>(_load, source, _gaps);
  const auto handover = std::make_shared<DeviceHandover>();
  PatientThread::forDevices().runWithin(_patienceSeconds, [=] { device->openFor(*handover); });
  const bool isMine = handover->accept();
  if (isMine && device->isOpen()) {
    _device = device;
    return std::nullopt;
  }
  device->gate.setSource(nullptr);
  if (!isMine) return Failure::unavailable("The sound device does not answer.");
  return Failure::unavailable("There is no sound device: " + device->error() + ".");
}

void SdlOutput::close() {
  if (!_device) return;
  _device->gate.setSource(nullptr);
  PatientThread::forDevices().runWithin(0, [device = std::move(_device)] { device->close(); });
}

AudioFormat SdlOutput::formatForClip(const AudioFormat& clip) {
  return _device ? _device->format() : clip;
}

std::size_t SdlOutput::latencyFrames() const { return kBuffersUntilHeard * kBufferFrames; }

// Polls: SDL reports a removal on another thread, and does not report every kind of loss.
std::optional<Failure> SdlOutput::loss() const {
  if (!_device || !_device->isStopped()) return std::nullopt;
  return Failure::unavailable("The sound device is gone.");
}

}  // namespace marlune
