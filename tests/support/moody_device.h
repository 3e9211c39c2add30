#ifndef MARLUNE_TESTS_SUPPORT_MOODY_DEVICE_H_
#define MARLUNE_TESTS_SUPPORT_MOODY_DEVICE_H_

#include <atomic>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "marlune/desktop/audio/output/audio_output.h"

namespace marlune {

// A device with its own thread, which may reopen in another format, respond late, refuse to open or
// be lost.
class MoodyDevice : public AudioOutput {
 public:
  using Listener =
      std::function<void(const float* frames, std::size_t count, std::size_t sounding)>;

  explicit MoodyDevice(Listener listener) : _listener(std::move(listener)) {}
  ~MoodyDevice() override { close(); }

  // The conditions of the next opening; set only while closed.
  AudioFormat format = {22'050, 1};
  std::size_t latency = 0;
  unsigned lateness = 0;  // how often the opening yields before it completes
  bool refuses = false;

  // Any thread; lasts until the next opening.
  void lose() { _isLost.store(true); }

  std::optional<Failure> open(AudioSource& source, const std::string&) override {
    for (unsigned i = 0; i < lateness; ++i) std::this_thread::yield();
    if (refuses) return Failure::unavailable("The device does not answer.");
    _opened = format;
    _openedLatency = latency;
    _isLost.store(false);
    _isOpen.store(true);
    _thread = std::thread([this, &source] { _run(source); });
    return std::nullopt;
  }
  void close() override {
    _isOpen.store(false);
    if (_thread.joinable()) _thread.join();
  }
  AudioFormat formatForClip(const AudioFormat&) override { return _opened; }
  std::size_t latencyFrames() const override { return _openedLatency; }
  std::optional<Failure> loss() const override {
    if (!_isLost.load()) return std::nullopt;
    return Failure::unavailable("The device is gone.");
  }

 private:
  void _run(AudioSource& source) {
    std::vector<float> frames(64 * static_cast<std::size_t>(_opened.channels));
    while (_isOpen.load() && !_isLost.load()) {
      _listener(frames.data(), 64, source.render(frames.data(), 64, _opened.channels));
      std::this_thread::yield();
    }
  }

  const Listener _listener;
  AudioFormat _opened;
  std::size_t _openedLatency = 0;
  std::atomic<bool> _isOpen = false;
  std::atomic<bool> _isLost = false;
  std::thread _thread;
};

}  // namespace marlune

#endif  // MARLUNE_TESTS_SUPPORT_MOODY_DEVICE_H_
