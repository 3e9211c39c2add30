// A device whose opening completes at about the time the caller gives up.

#include "marlune/desktop/audio/device/device_handover.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <map>
#include <mutex>
#include <random>
#include <thread>

#include "marlune/desktop/audio/device/patient_thread.h"
#include "marlune/desktop/audio/device/sdl_library.h"
#include "marlune/desktop/audio/device/sdl_output.h"

namespace marlune {
namespace {

using Microseconds = std::chrono::microseconds;

// Replaces SDL: an opening takes as long as the test sets, and an open device runs its callback
// until it is closed.
class StandInSdl {
 public:
  StandInSdl() {
    library.initSubSystem = [](Uint32) { return 0; };
    library.quitSubSystem = [](Uint32) {};
    library.getError = []() -> const char* { return "no error"; };
    library.openAudioDevice = [](const char*, int, const SDL_AudioSpec* wanted, SDL_AudioSpec* got,
                                 int) {
      *got = *wanted;
      return _current->_open(*wanted);
    };
    library.closeAudioDevice = [](SDL_AudioDeviceID id) { _current->_close(id); };
    library.pauseAudioDevice = [](SDL_AudioDeviceID, int) {};
    library.getAudioDeviceStatus = [](SDL_AudioDeviceID) { return SDL_AUDIO_PLAYING; };
    _current = this;
  }
  // Closing does not wait, so the last close may still be pending.
  ~StandInSdl() { PatientThread::forDevices().waitUntilIdle(600); }

  std::size_t openDevices() const {
    const std::lock_guard lock(_mutex);
    return _devices.size();
  }

  // What the device thread does for all open devices.
  void callBack() const {
    const std::lock_guard lock(_mutex);
    std::array<float, 64> frames;
    for (const auto& [id, spec] : _devices) {
      spec.callback(spec.userdata, reinterpret_cast<Uint8*>(frames.data()), sizeof frames);
    }
  }

  SdlLibrary library;
  std::atomic<Microseconds> openingTakes = Microseconds(0);

 private:
  SDL_AudioDeviceID _open(const SDL_AudioSpec& spec) {
    std::this_thread::sleep_for(openingTakes.load());
    const std::lock_guard lock(_mutex);
    _devices.emplace(++_lastId, spec);
    return _lastId;
  }

  void _close(SDL_AudioDeviceID id) {
    const std::lock_guard lock(_mutex);
    _devices.erase(id);
  }

  static inline StandInSdl* _current = nullptr;
  mutable std::mutex _mutex;
  std::map<SDL_AudioDeviceID, SDL_AudioSpec> _devices;
  SDL_AudioDeviceID _lastId = 0;
};

class SilentSource : public AudioSource {
 public:
  std::size_t render(float*, std::size_t, int) noexcept override { return 0; }
};

TEST(DeviceHandoverTest, ADeviceThatAnswersAsPatienceEndsBelongsToExactlyOneSide) {
  constexpr Microseconds kPatience(400);
  StandInSdl sdl;
  const auto load = [&]() -> Result<const SdlLibrary*> { return &sdl.library; };
  SilentSource source;
  std::mt19937 random(8);  // NOLINT(bugprone-random-generator-seed): reproducible
  std::array<int, 2> outcomes = {};
  for (int round = 0; round < 3'000; ++round) {
    sdl.openingTakes = Microseconds(200 + static_cast<int>(random() % 250));
    SdlOutput output(load, std::chrono::duration<double>(kPatience).count());
    const bool isOpen = !output.open(source, "");
    ++outcomes[isOpen];
    // A second opening waits for the first, however long that takes.
    sdl.openingTakes = Microseconds(0);
    SdlOutput next(load, 600);
    ASSERT_EQ(next.open(source, ""), std::nullopt);
    sdl.callBack();  // would use a freed object if a device without an owner were left open
    ASSERT_EQ(sdl.openDevices(), isOpen ? 2U : 1U) << "round " << round;
  }
  RecordProperty("answered", outcomes[1]);
  RecordProperty("given up", outcomes[0]);
}

}  // namespace
}  // namespace marlune
