// Plays a phrase of 8 recordings on a busy machine and compares the output with the recordings:
//
//     busy_machine [RUNS [BURNERS]]        8 runs alongside 8 processes that never sleep
//
// The output is the sound device's (makeDeviceOutput) on the program's own PulseAudio server with
// one null sink, recorded from that sink's monitor. For each run, prints how many windows of 512
// frames are not intact, and the time from the call to the first sample at the monitor with the
// output open; then the load average. Exits with 1 if more than 2 windows are broken in all runs,
// any in all but the two worst, or a first sample took more than 150 ms in an undisturbed run (the
// one before the burners start).

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <list>
#include <memory>
#include <string>
#include <thread>

#include "marlune/desktop/audio/device/device_output.h"
#include "support/engine_rig.h"
#include "support/pulse_server.h"

namespace marlune {
namespace {

constexpr std::size_t kWords = 8;
constexpr std::size_t kWordFrames = 7'936;  // 124 windows of 512 in total
constexpr AudioFormat kFormat = {PulseServer::kRate, 1};

struct Run {
  std::size_t brokenWindows = 0;
  double millisecondsToSound = -1;
  std::uint64_t gaps = 0;
};

class BusyMachine {
 public:
  BusyMachine() {
    for (std::size_t i = 0; i < kWords; ++i) {
      const auto begin = _sound.begin() + static_cast<long>(i * kWordFrames);
      _paths.push_back(_folder.write(std::to_string(i) + ".aif",
                                     {begin, begin + static_cast<long>(kWordFrames)}, kFormat));
    }
  }

  // Plays one phrase and records from before it until after it.
  Run run() {
    Run result;
    const MonitorRecording recording;
    const std::uint64_t gaps = _route->output()->gapCount();
    if (!_session.setActive(true).succeeded) return {_sound.size() / 512, -1, 0};
    recording.samplesAfter(PulseServer::kRate / 2);  // the output is open and silent
    const auto queue = DesktopQueuePlayer::overRoute(_route);
    for (const std::string& path : _paths) EngineRig::append(*queue, path);
    const std::size_t before = recording.frames();
    const auto call = MonitorRecording::Clock::now();
    queue->play();
    waitUntil([&] { return queue->items().empty(); });
    queue->setRate(0);
    result.gaps = _route->output()->gapCount() - gaps;
    _session.setActive(false);
    const auto samples = recording.samplesAfter(PulseServer::kRate / 2);
    if (const auto first = recording.firstSound(before)) {
      result.millisecondsToSound = std::chrono::duration<double, std::milli>(*first - call).count();
    }
    result.brokenWindows = brokenWindows(_sound, samples);
    return result;
  }

 private:
  const std::vector<short> _sound = countingSamples(kWords * kWordFrames, 0);
  const RecordingFolder _folder;
  std::vector<std::string> _paths;
  const std::shared_ptr<AudioRoute> _route = std::make_shared<AudioRoute>(makeDeviceOutput());
  DesktopAudioSession _session{_route};
};

void print(const char* name, const Run& run) {
  std::string load;
  std::getline(std::ifstream("/proc/loadavg"), load);
  std::printf(
      "%s: %3zu of %zu windows broken, %llu gaps counted, first sample after %.0f ms, load %s\n",
      name, run.brokenWindows, kWords * kWordFrames / 512,
      static_cast<unsigned long long>(run.gaps), run.millisecondsToSound, load.c_str());
  std::fflush(stdout);
}

bool measure(std::size_t runs, std::size_t burners) {
  const PulseServer server;
  BusyMachine machine;
  const Run undisturbed = machine.run();
  print("before", undisturbed);
  std::list<ChildProcess> load;
  for (std::size_t i = 0; i < burners; ++i) {
    load.emplace_back(std::vector<std::string>{"sh", "-c", "while :; do :; done"});
  }
  std::vector<std::size_t> broken;
  for (std::size_t i = 0; i < runs; ++i) {
    const Run run = machine.run();
    print(("run " + std::to_string(i + 1)).c_str(), run);
    broken.push_back(run.brokenWindows);
  }
  std::sort(broken.begin(), broken.end());
  std::size_t all = 0, best = 0;
  for (std::size_t i = 0; i < broken.size(); ++i) {
    all += broken[i];
    if (i + 2 < broken.size()) best += broken[i];
  }
  std::printf("broken in all %zu, in all but the two worst runs %zu\n", all, best);
  return all <= 2 && best == 0 && undisturbed.millisecondsToSound >= 0 &&
         undisturbed.millisecondsToSound <= 150;
}

}  // namespace
}  // namespace marlune

int main(int argc, char** argv) {
  if (!marlune::PulseServer::isInstalled()) {
    std::fprintf(stderr, "busy_machine needs pulseaudio, pactl and parec\n");
    return EXIT_FAILURE;
  }
  const auto number = [&](int place) {
    return argc > place ? static_cast<std::size_t>(std::strtoull(argv[place], nullptr, 10)) : 8;
  };
  return marlune::measure(number(1), number(2)) ? EXIT_SUCCESS : EXIT_FAILURE;
}
