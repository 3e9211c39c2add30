// Puts the queue engine under load: engine_soak WHAT [COUNT [SEED]]. Prints counts. Exits with 1 if
// a count is wrong, and is ended by SIGALRM if a round hangs. WHAT is one of
//
//     cycles-cranked, cycles-clock   append, play, append, stop or play out
//     losses-cranked, losses-clock   lose the output during playback, continue with a new queue
//     teardowns                      release a queue during one of its notifications
//     clips [COUNT [SPEED]]          compare the clock's output with the queued recordings
//     latency                        from the player's call to the first sample at the output
//
// A full soak, with real threads in each round:
//
//     cmake --preset bench
//     cmake --build --preset bench --target engine_soak schedule_soak teardown_soak
//     S=build/bench/bench/playback
//     $S/engine_soak cycles-cranked 1000000 && $S/engine_soak cycles-clock 1000000
//     $S/engine_soak losses-cranked 10000 && $S/engine_soak losses-clock 10000
//     $S/engine_soak teardowns 100000 && $S/teardown_soak 100000
//     $S/schedule_soak 1000000
//
// A cycle on the clock takes about a millisecond on average: a quarter of them play out, which the
// worker notices when it polls the output, every three milliseconds. The others take a tenth or two
// of that. For the thread sanitizer, configure with `cmake --preset tsan -DMARLUNE_BENCH=ON`, run
// build/tsan/bench/playback/ and use a tenth of the cycles. At a low priority on a fully loaded
// machine, a thousand cycles can take minutes; the alarm may then go off without a hang.

#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <random>
#include <thread>

#include "fakes/fake_system_log.h"
#include "marlune/desktop/audio/output/clock_output.h"
#include "marlune/desktop/desktop_platform.h"
#include "marlune/desktop/services/folder_bundle.h"
#include "marlune/desktop/services/run_loop.h"
#include "marlune/platform/platform.h"
#include "marlune/playback/player.h"
#include "support/engine_rig.h"

namespace marlune {
namespace {

constexpr AudioFormat kFormat = {22'050, 1};
constexpr unsigned kSecondsAnAlarm = 600;  // for 1,000 rounds
using Clock = std::chrono::steady_clock;
using Items = std::vector<std::shared_ptr<FilePlayerItem>>;

// Notifies the main thread and waits for it, as the player's observer does.
class WaitingObserver : public QueuePlayerObserver {
 public:
  explicit WaitingObserver(RunLoop& loop) : _loop(loop) {}
  void observeValueForKeyPath(std::string_view, const std::shared_ptr<QueuePlayer>&) override {
    if (_loop.runAndWait([this] { ++told; })) answered.fetch_add(1);
  }
  std::uint64_t told = 0;  // main thread
  std::atomic<std::uint64_t> answered = 0;

 private:
  RunLoop& _loop;
};

class Soak {
 public:
  explicit Soak(unsigned long seed) : _random(static_cast<std::uint32_t>(seed)) {
    Platform::shared().systemLog = _log;
    for (const int rate : {22'050, 22'050, 44'100}) {
      const auto name = std::to_string(_paths.size()) + ".aif";
      const std::uint32_t length = 150 + any(200);
      _paths.push_back(_folder.write(name, countingSamples(length, 0), {rate, 1}));
      const auto factor = static_cast<std::uint32_t>(rate / kFormat.sampleRate);
      _frames.push_back((length + factor / 2) / factor);
    }
    _frames.push_back(0);
    _paths.push_back(_folder.writeBytes("broken.aif", std::vector<char>(40, 'x')));
  }

  bool cycles(std::uint64_t count, bool isClock);
  bool losses(std::uint64_t count, bool isClock);
  bool teardowns(std::uint64_t count);
  bool clips(std::size_t count, double speed);
  bool latency(std::size_t count);

 private:
  std::uint32_t any(std::uint32_t count) { return static_cast<std::uint32_t>(_random() % count); }
  void use(bool isClock);
  void makeQueue();
  void append();
  void letTimePass();
  bool playOut();
  std::uint64_t framesHeard();
  std::size_t linesWith(std::string_view text) const;

  std::mt19937 _random;
  const std::shared_ptr<FakeSystemLog> _log = std::make_shared<FakeSystemLog>();
  const RecordingFolder _folder;
  std::vector<std::string> _paths;
  std::vector<std::uint64_t> _frames;            // of each recording, at the output's rate
  std::atomic<std::uint64_t> _heard = 0;         // frames of sound that the output took
  std::atomic<std::uint64_t> _clockPeriods = 0;  // periods included in _heard
  RunLoop _loop;
  WaitingObserver _observer{_loop};
  std::shared_ptr<CrankedOutput> _crank;
  std::shared_ptr<ClockOutput> _clock;
  std::shared_ptr<AudioRoute> _route;
  std::unique_ptr<DesktopAudioSession> _session;
  std::shared_ptr<DesktopQueuePlayer> _queue;
  Items _items;
  std::uint64_t _appended = 0;
  std::uint64_t _framesAppended = 0;
};

void Soak::use(bool isClock) {
  std::shared_ptr<AudioOutput> output;
  if (isClock) {
    const auto listen = [this](const float*, std::size_t, std::size_t sounding) {
      _heard += sounding;
      ++_clockPeriods;
    };
    output = _clock = std::make_shared<ClockOutput>(kFormat, listen, /*speed=*/100, 64);
  } else {
    output = _crank = std::make_shared<CrankedOutput>(kFormat);
  }
  _route = std::make_shared<AudioRoute>(output);
  _session = std::make_unique<DesktopAudioSession>(_route);
  makeQueue();
}

void Soak::makeQueue() {
  _queue = DesktopQueuePlayer::overRoute(_route);
  _queue->addObserver(&_observer, QueuePlayer::kCurrentItemKeyPath, QueuePlayer::kNewValue);
  _queue->addObserver(&_observer, QueuePlayer::kStatusKeyPath, QueuePlayer::kNewValue);
}

void Soak::append() {
  for (std::uint32_t i = 1 + any(3); i > 0; --i) {
    const std::uint32_t choice = any(40) == 0 ? 3 : any(3);
    auto item = std::make_shared<FilePlayerItem>(_paths[choice]);
    if (!_queue->canInsert(item.get(), nullptr)) continue;  // it has just failed
    _queue->insert(item, nullptr);
    _items.push_back(std::move(item));
    ++_appended;
    _framesAppended += _frames[choice];
  }
}

void Soak::letTimePass() {
  if (_crank) {
    std::array<float, 400> frames;
    _heard += _crank->crankInto(frames.data(), any(400));
  }
  for (std::uint32_t i = any(30); i > 0; --i) std::this_thread::yield();
  _loop.runPending();
}

// Returns whether the queue ran empty and no item remained.
bool Soak::playOut() {
  while (!_queue->items().empty()) letTimePass();
  const bool isClean =
      std::none_of(_items.begin(), _items.end(), [](const auto& item) { return item->isQueued(); });
  _items.clear();
  return isClean;
}

// Waits until the period in which the last item ended is included in _heard.
std::uint64_t Soak::framesHeard() {
  const std::uint64_t periods = _clockPeriods;
  while (_clock && _clockPeriods == periods) std::this_thread::yield();
  return _heard;
}

std::size_t Soak::linesWith(std::string_view text) const {
  const auto lines = _log->lines();
  return static_cast<std::size_t>(
      std::count_if(lines.begin(), lines.end(),
                    [&](const std::string& line) { return line.find(text) != std::string::npos; }));
}

bool Soak::cycles(std::uint64_t count, bool isClock) {
  use(isClock);
  std::uint64_t wrong = 0, broken = 0, underruns = 0, dropped = 0, counted = 0, misheard = 0;
  const auto readLog = [&] {
    broken += linesWith("cannot be played");
    underruns += linesWith("Decoding was late");
    _log->clear();
  };
  bool isSilent = true;  // no sound was on its way to the output when the cycle started
  for (std::uint64_t i = 0; i < count; ++i) {
    if (i % 1'000 == 0) {
      alarm(kSecondsAnAlarm);
      readLog();
    }
    const std::uint64_t heardBefore = _heard;
    _framesAppended = 0;
    append();
    _session->setActive(true);
    _queue->play();
    letTimePass();
    append();
    letTimePass();
    if (any(4) == 0) {
      wrong += !playOut();
      if (isSilent) {
        ++counted;
        misheard += framesHeard() - heardBefore != _framesAppended;
      }
      isSilent = true;
    } else {
      _queue->setRate(0);
      dropped += _queue->items().size();
      _queue->removeAllItems();
      wrong += !playOut();
      isSilent = !isClock;
    }
    if (any(50) == 0) {
      _queue->setRate(0);
      isSilent |= _session->setActive(false).succeeded;
    }
  }
  readLog();
  const bool hasFailed = _queue->status() == QueuePlayer::Status::failed;
  const auto print = [](const char* what, std::uint64_t number) {
    std::printf("%s %llu\n", what, static_cast<unsigned long long>(number));
  };
  print("cycles", count);
  print("items appended", _appended);
  print("  in the queue when it was emptied", dropped);
  print("  broken and left out", broken);
  print("  in the queue at the end", _queue->items().size());
  print("cycles with an item left over", wrong);
  print("cycles whose sound was counted at the output", counted);
  print("  whose sound differed from the appended items", misheard);
  print("notifications", _observer.told);
  print("lines about late decoding", underruns);
  if (hasFailed) std::printf("the queue has failed although no output was lost\n");
  return wrong == 0 && misheard == 0 && !hasFailed;
}

bool Soak::losses(std::uint64_t count, bool isClock) {
  use(isClock);
  std::uint64_t wrong = 0;
  for (std::uint64_t i = 0; i < count; ++i) {
    if (i % 1'000 == 0) alarm(kSecondsAnAlarm);
    _log->clear();
    append();
    if (!_session->setActive(true).succeeded) ++wrong;
    _queue->play();
    // Ends with a long recording; otherwise the queue could run dry before the loss is noticed.
    while (_queue->items().empty()) append();
    if (_crank) {
      _crank->crank(any(100));
      _crank->lose("It is gone.");
    } else {
      for (std::uint32_t k = any(100); k > 0; --k) std::this_thread::yield();
      _clock->lose();
    }
    while (_queue->status() != QueuePlayer::Status::failed) {
      if (_queue->items().empty()) append();
      _loop.runPending();
      std::this_thread::yield();
    }
    wrong += !playOut();
    while (linesWith("The play queue has failed") == 0) std::this_thread::yield();
    wrong += linesWith("The play queue has failed") != 1;
    makeQueue();
  }
  std::printf("losses %llu, items %llu, failed rounds %llu\n",
              static_cast<unsigned long long>(count), static_cast<unsigned long long>(_appended),
              static_cast<unsigned long long>(wrong));
  return wrong == 0;
}

bool Soak::teardowns(std::uint64_t count) {
  use(/*isClock=*/false);
  _session->setActive(true);
  std::vector<std::weak_ptr<DesktopQueuePlayer>> ended;
  std::uint64_t underWay = 0;
  const auto reap = [&] {
    while (std::any_of(ended.begin(), ended.end(), [](const auto& q) { return !q.expired(); })) {
      _loop.waitFor(0.001);
      _loop.runPending();
    }
    ended.clear();
  };
  for (std::uint64_t i = 0; i < count; ++i) {
    if (i % 1'000 == 0) alarm(kSecondsAnAlarm);
    append();
    if (any(2) == 0) _queue->play();
    for (std::uint32_t k = any(60); k > 0; --k) std::this_thread::yield();
    if (any(4) == 0) letTimePass();
    ended.push_back(_queue);
    _queue.reset();
    underWay += !ended.back().expired();  // the worker holds a share while it waits for us
    if (any(3) == 0) reap();
    _items.clear();
    _log->clear();
    makeQueue();
  }
  reap();
  std::printf(
      "teardowns %llu, with a notification under way %llu, notifications %llu, "
      "answered %llu\n",
      static_cast<unsigned long long>(count), static_cast<unsigned long long>(underWay),
      static_cast<unsigned long long>(_observer.told),
      static_cast<unsigned long long>(_observer.answered.load()));
  return _observer.told == _observer.answered.load();
}

bool Soak::clips(std::size_t count, double speed) {
  std::vector<short> queued;
  std::vector<short> heard;
  std::size_t silence = 0, gaps = 0;  // frames of silence since the last sound; and between sounds
  heard.reserve(count * 4'000);
  const auto listen = [&](const float* frames, std::size_t frameCount, std::size_t sounding) {
    if (sounding > 0 && !heard.empty()) gaps += silence;
    if (sounding > 0) silence = 0;
    for (std::size_t i = 0; i < sounding; ++i) {
      heard.push_back(static_cast<short>(std::lrintf(frames[i] * 32'768.0f)));
    }
    silence += frameCount - sounding;
  };
  {
    const auto route =
        std::make_shared<AudioRoute>(std::make_shared<ClockOutput>(kFormat, listen, speed));
    DesktopAudioSession session(route);
    const auto queue = DesktopQueuePlayer::overRoute(route);
    session.setActive(true);
    queue->play();
    for (std::size_t i = 0; i < count; ++i) {
      const auto samples = countingSamples(1'000 + any(3'000), queued.size());
      queued.insert(queued.end(), samples.begin(), samples.end());
      const auto path = _folder.write("clip" + std::to_string(i) + ".aif", samples, kFormat);
      while (queue->items().size() > 4 + any(6))
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
      EngineRig::append(*queue, path);
    }
    while (!queue->items().empty()) std::this_thread::yield();
  }
  std::size_t different = 0;
  for (std::size_t i = 0; i < std::min(queued.size(), heard.size()); ++i) {
    different += queued[i] != heard[i];
  }
  std::printf(
      "clips %zu, samples queued %zu, heard %zu, different %zu, silent in between %zu, "
      "underrun lines %zu\n",
      count, queued.size(), heard.size(), different, gaps, linesWith("Decoding was late"));
  return queued == heard && gaps == 0;
}

bool Soak::latency(std::size_t count) {
  std::atomic<Clock::rep> firstSound = 0;
  const auto listen = [&](const float*, std::size_t, std::size_t sounding) {
    Clock::rep none = 0;
    if (sounding > 0) {
      firstSound.compare_exchange_strong(none, Clock::now().time_since_epoch().count());
    }
  };
  const std::shared_ptr<RunLoop> loop(&_loop, [](RunLoop*) {});
  Platform::shared().mainThread = loop;
  installDesktopAudio(std::make_shared<ClockOutput>(AudioFormat{48'000, 2}, listen));
  const auto player =
      Player::initWithDirectory("", std::make_shared<FolderBundle>(_folder.path(".")));
  std::map<bool, std::vector<double>> milliseconds;
  for (std::size_t i = 0; i < count; ++i) {
    const bool isOpen = i % 2 == 0;
    if (isOpen) Platform::shared().audioSession->setActive(true);
    std::this_thread::sleep_for(std::chrono::microseconds(any(20'000)));
    firstSound = 0;
    const Clock::rep start = Clock::now().time_since_epoch().count();
    player->playSoundFilesInSequence({"0", "1", "2"});
    while (player->isPlaying()) {
      _loop.waitFor(0.01);
      _loop.runPending();
    }
    const Clock::duration span(firstSound - start);
    milliseconds[isOpen].push_back(std::chrono::duration<double, std::milli>(span).count());
  }
  for (auto& [isOpen, each] : milliseconds) {
    std::sort(each.begin(), each.end());
    std::printf("first sample, output %s: median %.2f ms, 95 %% %.2f ms, largest %.2f ms of %zu\n",
                isOpen ? "open" : "to be opened", each[each.size() / 2],
                each[each.size() * 95 / 100], each.back(), each.size());
  }
  return milliseconds[true][milliseconds[true].size() / 2] < 30;
}

bool run(int argc, char** argv) {
  const std::string what = argc > 1 ? argv[1] : "";
  const auto number = [&](int place, unsigned long long otherwise) {
    return argc > place ? std::strtoull(argv[place], nullptr, 10) : otherwise;
  };
  Soak soak(what == "clips" ? 1 : static_cast<unsigned long>(number(3, 1)));
  if (what == "cycles-cranked") return soak.cycles(number(2, 1'000'000), false);
  if (what == "cycles-clock") return soak.cycles(number(2, 1'000'000), true);
  if (what == "losses-cranked") return soak.losses(number(2, 10'000), false);
  if (what == "losses-clock") return soak.losses(number(2, 10'000), true);
  if (what == "teardowns") return soak.teardowns(number(2, 100'000));
  if (what == "clips") return soak.clips(number(2, 1'000), argc > 3 ? std::atof(argv[3]) : 20);
  if (what == "latency") return soak.latency(number(2, 200));
  std::fprintf(stderr, "usage: engine_soak WHAT [COUNT [SEED]]; see the source for WHAT\n");
  return false;
}

}  // namespace
}  // namespace marlune

int main(int argc, char** argv) { return marlune::run(argc, argv) ? EXIT_SUCCESS : EXIT_FAILURE; }
