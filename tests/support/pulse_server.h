#ifndef MARLUNE_TESTS_SUPPORT_PULSE_SERVER_H_
#define MARLUNE_TESTS_SUPPORT_PULSE_SERVER_H_

#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "support/child_process.h"
#include "support/temporary_directory.h"

namespace marlune {

// Waits as long as a very busy machine may need. Returns whether the condition was met.
template <typename Condition>
bool waitUntil(Condition isMet) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  while (!isMet()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return true;
}

// The test's own PulseAudio server with one null sink. Only one test at a time can use it, because
// it is selected by the environment. The destructor stops it and restores the environment.
class PulseServer {
 public:
  static constexpr int kRate = 48'000;
  static constexpr int kChannels = 2;

  static bool isInstalled() {
    return std::system("command -v pulseaudio pactl parec >/dev/null") == 0;  // NOLINT
  }

  PulseServer() {
    std::filesystem::create_directories(_folder / "home/.config/pulse");
    std::ofstream(_folder / "home/.config/pulse/client.conf") << "autospawn = no\n";
    _setVariable("HOME", (_folder / "home").c_str());
    _setVariable("XDG_CONFIG_HOME", (_folder / "home/.config").c_str());
    _setVariable("XDG_RUNTIME_DIR", _folder.c_str());
    _setVariable("PULSE_SERVER", ("unix:" + _socket()).c_str());
    for (const char* name : {"PULSE_PROP", "PULSE_SINK", "SDL_AUDIODRIVER", "DISPLAY"}) {
      _setVariable(name, nullptr);
    }
    start();
  }
  ~PulseServer() {
    _process.reset();
    for (const auto& [name, value] : _formerVariables) _set(name, value ? value->c_str() : nullptr);
  }
  PulseServer(const PulseServer&) = delete;
  PulseServer& operator=(const PulseServer&) = delete;

  void start() {
    const std::string rate = " rate=" + std::to_string(kRate);
    const std::string channels = " channels=" + std::to_string(kChannels);
    _process = std::make_unique<ChildProcess>(std::vector<std::string>{
        "pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no",
        "--load=module-null-sink sink_name=test" + rate + channels,
        "--load=module-native-protocol-unix auth-anonymous=1 socket=" + _socket()});
    if (!waitUntil([this] { return _process->hasEnded() || _isListening(); }) ||
        _process->hasEnded()) {
      throw std::runtime_error("cannot start pulseaudio");
    }
  }
  void kill() {
    _process->kill();
    std::filesystem::remove(_socket());
  }
  void suspend() const { _process->signal(SIGSTOP); }
  void resume() const { _process->signal(SIGCONT); }

  // The output of pactl.
  static std::string control(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "pactl");
    return ChildProcess(arguments).readAll();
  }

 private:
  std::string _socket() const { return (_folder / "socket").string(); }

  bool _isListening() const {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    _socket().copy(address.sun_path, sizeof address.sun_path - 1);
    const int end = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool isThere =
        ::connect(end, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    ::close(end);
    return isThere;
  }

  void _setVariable(const std::string& name, const char* value) {
    const char* const former = std::getenv(name.c_str());
    _formerVariables[name] = former ? std::optional<std::string>(former) : std::nullopt;
    _set(name, value);
  }
  static void _set(const std::string& name, const char* value) {
    if (value) {
      ::setenv(name.c_str(), value, /*overwrite=*/1);
    } else {
      ::unsetenv(name.c_str());
    }
  }

  const TemporaryDirectory _directory;
  const std::filesystem::path _folder = _directory.path();
  std::map<std::string, std::optional<std::string>> _formerVariables;
  std::unique_ptr<ChildProcess> _process;
};

// Records the left channel of a PulseServer's sink, as 16-bit samples.
class MonitorRecording {
 public:
  using Clock = std::chrono::steady_clock;

  // Returns once everything that is played is recorded.
  MonitorRecording() {
    if (!waitUntil([this] { return frames() > 0; })) throw std::runtime_error("parec is silent");
  }
  ~MonitorRecording() {
    _parec.kill();
    _reader.join();
  }
  MonitorRecording(const MonitorRecording&) = delete;
  MonitorRecording& operator=(const MonitorRecording&) = delete;

  std::size_t frames() const {
    const std::lock_guard lock(_mutex);
    return _samples.size();
  }
  std::vector<short> samples() const {
    const std::lock_guard lock(_mutex);
    return _samples;
  }
  // All samples once `count` more frames are recorded; fewer if the server has died.
  std::vector<short> samplesAfter(std::size_t count) const {
    const std::size_t end = frames() + count;
    waitUntil([&] { return frames() >= end; });
    return samples();
  }
  // The time at which the first nonzero sample after frame `from` was read.
  std::optional<Clock::time_point> firstSound(std::size_t from) const {
    const std::lock_guard lock(_mutex);
    const auto begin = _samples.begin() + static_cast<long>(from);
    const auto sound = std::find_if(begin, _samples.end(), [](short each) { return each != 0; });
    if (sound == _samples.end()) return std::nullopt;
    return _arrivals.lower_bound(static_cast<std::size_t>(sound - _samples.begin()) + 1)->second;
  }

 private:
  void _read() {
    short pair[2 * 1'024];
    std::size_t left = 0;  // bytes of an incomplete frame
    for (;;) {
      char* const bytes = reinterpret_cast<char*>(pair);
      const ssize_t count = ::read(_parec.output(), bytes + left, sizeof pair - left);
      if (count <= 0) return;
      left += static_cast<std::size_t>(count);
      const std::size_t frameCount = left / sizeof(short[2]);
      {
        const std::lock_guard lock(_mutex);
        for (std::size_t i = 0; i < frameCount; ++i) _samples.push_back(pair[2 * i]);
        _arrivals[_samples.size()] = Clock::now();
      }
      std::copy(bytes + frameCount * sizeof(short[2]), bytes + left, bytes);
      left %= sizeof(short[2]);
    }
  }

  mutable std::mutex _mutex;
  std::vector<short> _samples;
  std::map<std::size_t, Clock::time_point> _arrivals;  // by the number of frames at that time
  ChildProcess _parec{{"parec", "--raw", "--device=test.monitor", "--format=s16le",
                       "--rate=" + std::to_string(PulseServer::kRate), "--channels=2",
                       "--latency-msec=10"}};
  std::thread _reader{[this] { _read(); }};
};

// The number of windows of `window` frames of `sound` that are missing from `recorded`. Each window
// is searched for after the previous one.
inline std::size_t brokenWindows(const std::vector<short>& sound,
                                 const std::vector<short>& recorded, std::size_t window = 512) {
  std::size_t broken = 0;
  auto place = recorded.begin();
  for (std::size_t i = 0; i + window <= sound.size(); i += window) {
    const auto begin = sound.begin() + static_cast<long>(i);
    const auto found = std::search(place, recorded.end(), begin, begin + static_cast<long>(window));
    if (found == recorded.end()) {
      ++broken;
    } else {
      place = found + static_cast<long>(window);
    }
  }
  return broken;
}

}  // namespace marlune

#endif  // MARLUNE_TESTS_SUPPORT_PULSE_SERVER_H_
