#ifndef MARLUNE_TESTS_SUPPORT_ENGINE_SCHEDULE_H_
#define MARLUNE_TESTS_SUPPORT_ENGINE_SCHEDULE_H_

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <future>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "fakes/fake_system_log.h"
#include "marlune/desktop/audio/output/clock_output.h"
#include "marlune/desktop/audio/output/file_output.h"
#include "marlune/desktop/services/run_loop.h"
#include "support/engine_rig.h"
#include "support/heard_recordings.h"
#include "support/moody_device.h"

namespace marlune {

struct ScheduleCounts {
  std::uint64_t events = 0, rounds = 0, items = 0;
  std::uint64_t heardWhole = 0, leftOut = 0, removed = 0, failed = 0, ended = 0, pending = 0;
  std::uint64_t failures = 0;  // queues that failed
  // Faults: items that ended as heard but were not, items with a missing or surplus line, pending
  // items in no queue; frames of no recording; waits of the observer that were given up.
  std::uint64_t unheard = 0, lines = 0, lost = 0, strange = 0, unanswered = 0;
  std::uint64_t faults() const { return unheard + lines + lost + strange + unanswered; }
};

// Random schedules of events for a queue, in rounds of about 60 events, each on one output: items
// inserted, rates, removals, sessions opened and closed, outputs that are lost, refused, late or of
// another format, the passing of time, and a main thread that rarely runs. At the end of each
// round, compares the fate of every item with the output's sound and with the log.
//
// Replaces the process's log. Throws only on faults of the machine.
class EngineSchedule {
 public:
  explicit EngineSchedule(std::uint32_t seed, std::shared_ptr<FakeSystemLog> log)
      : _random(seed), _log(std::move(log)) {
    for (std::size_t i = 0; i < 6; ++i) {
      const AudioFormat format = {i % 3 == 2 ? 44'100 : 22'050, 1};
      _paths.push_back(_folder.write(std::to_string(i) + ".aif",
                                     countingSamples(80 + _any(3'000), i * 7'000), format));
    }
    _broken = _folder.writeBytes("broken.aif", std::vector<char>(40, 'x'));
  }

  void run(std::uint64_t events) {
    for (const std::uint64_t end = counts.events + events; counts.events < end;) _round();
  }

  ScheduleCounts counts;

 private:
  // The text before the number of dropped items.
  static constexpr std::string_view kEndedLine = "A queue of sound files has ended: ";
  static constexpr std::string_view kFailedLine = "Sound files dropped: ";

  enum class Kind { cranked, clock, file, device };
  using Fate = ItemFate::Kind;

  // Waits for the main thread, as the player's observer does.
  class WaitingObserver : public QueuePlayerObserver {
   public:
    explicit WaitingObserver(RunLoop& loop) : _loop(loop) {}
    void observeValueForKeyPath(std::string_view, const std::shared_ptr<QueuePlayer>&) override {
      if (!_loop.runAndWait([] {})) givenUp.fetch_add(1);
    }
    std::atomic<std::uint64_t> givenUp = 0;

   private:
    RunLoop& _loop;
  };

  struct Entry {
    std::shared_ptr<FilePlayerItem> item;
    std::size_t place;  // index in _paths; past the end for the broken one
  };

  std::uint32_t _any(std::uint32_t count) { return static_cast<std::uint32_t>(_random() % count); }
  AudioFormat _anyFormat() {
    return {_any(3) == 0 ? 44'100 : 22'050, 1 + static_cast<int>(_any(2))};
  }
  std::size_t _anyLatency() { return _any(2) == 0 ? 0 : 1 + _any(300); }

  void _round() {
    _heard = HeardRecordings();
    _log->clear();
    _entries.clear();
    _makeOutput(static_cast<Kind>(_any(4)));
    _route = std::make_shared<AudioRoute>(_output);
    _session = std::make_unique<DesktopAudioSession>(_route);
    _makeQueue();
    for (std::uint32_t i = 30 + _any(60); i > 0; --i, ++counts.events) _event();
    _mend();
    if (_any(2) == 0) _playOut();
    _settle();
    _close();
    _settle();
    _check();
    _dropQueue();
    _checkLines(kEndedLine, _countOf("its queue has ended"), counts.ended);
    ++counts.rounds;
    counts.items += _entries.size();
    counts.strange += _heard.strangeFrames();
    counts.unanswered += _observer.givenUp.exchange(0);
  }

  void _makeOutput(Kind kind) {
    _crank = nullptr, _clock = nullptr, _device = nullptr, _file = nullptr;
    const auto listen = [this](const float* frames, std::size_t count, std::size_t sounding) {
      _heard.take(frames, count, sounding);
    };
    _format = _anyFormat();
    _latency = 0;
    if (kind == Kind::cranked) _output = _crank = std::make_shared<CrankedOutput>(_format);
    if (kind == Kind::clock) {
      _output = _clock = std::make_shared<ClockOutput>(_format, listen, /*speed=*/1'000, 64);
    }
    if (kind == Kind::file) {
      _output = _file = std::make_shared<FileOutput>(_folder.path("heard.wav"), _format);
    }
    if (kind == Kind::device) _output = _device = std::make_shared<MoodyDevice>(listen);
  }

  void _makeQueue() {
    _queue = DesktopQueuePlayer::overRoute(_route);
    _queue->addObserver(&_observer, QueuePlayer::kCurrentItemKeyPath, QueuePlayer::kNewValue);
    _queue->addObserver(&_observer, QueuePlayer::kStatusKeyPath, QueuePlayer::kNewValue);
  }

  // A notification that waits for the main thread keeps the queue alive, and its thread may then
  // destroy it. The line about the dropped items shows that this is complete.
  void _dropQueue() {
    const std::weak_ptr<QueuePlayer> queue = _queue;
    _queue.reset();
    while (!queue.expired()) _runMainThread();
    while (_isAnyQueued()) std::this_thread::yield();
    while (_told(kEndedLine) < _countOf("its queue has ended")) std::this_thread::yield();
  }

  void _runMainThread() {
    _loop.runPending();
    std::this_thread::yield();
  }

  void _event() {
    if (_queue->status() == QueuePlayer::Status::failed && _any(2) == 0) _replaceFailedQueue();
    const std::uint32_t choice = _any(100);
    if (choice < 24) return _append();
    if (choice < 34) return _open();
    if (choice < 43) return _queue->play();
    if (choice < 46) return _queue->setRate(0);
    if (choice < 49) return _queue->setRate(0.5f);
    if (choice < 51) return _queue->removeAllItems();
    if (choice < 55) return _pauseAndClose();
    if (choice < 57) return _close();
    if (choice < 59) return _lose();
    if (choice < 60) return _replaceQueue();
    if (choice < 68) return _runMainThread();
    if (choice < 72) return _removeSome();
    if (choice < 74) return _endOne();
    _letTimePass();
  }

  void _replaceQueue() {
    _dropQueue();
    _makeQueue();
  }

  void _replaceFailedQueue() {
    ++counts.failures;
    _replaceQueue();
  }

  void _pauseAndClose() {
    _queue->setRate(0);
    _close();
  }

  void _append() {
    const std::size_t place =
        _any(20) == 0 ? _paths.size() : _any(static_cast<std::uint32_t>(_paths.size()));
    auto item = std::make_shared<FilePlayerItem>(place == _paths.size() ? _broken : _paths[place]);
    if (!_queue->canInsert(item.get(), nullptr)) return;  // it has failed
    // An insertion may reopen the output.
    if (!_route->isOpen()) _prepareOpening();
    _queue->insert(item, nullptr);
    _entries.push_back({std::move(item), place});
  }

  void _removeSome() {
    const auto items = _queue->items();
    if (items.empty()) return;
    const std::size_t first = _any(static_cast<std::uint32_t>(items.size()));
    const std::size_t count = 1 + _any(static_cast<std::uint32_t>(items.size() - first));
    _queue->removeUnbegun(std::span(items).subspan(first, count));
  }

  // Without a fade, which would make samples of no recording.
  void _endOne() {
    for (const auto& item : _queue->items()) _queue->endEarly(item.get(), 0);
  }

  void _prepareOpening() {
    if (_crank) {
      _crank->setFormat(_format = _anyFormat());
      _crank->setLatencyFrames(_latency = _anyLatency());
      _any(6) == 0 ? _crank->refuse("It is refused.") : _crank->stopRefusing();
    } else if (_device) {
      _device->format = _format = _anyFormat();
      _device->latency = _latency = _anyLatency();
      _device->lateness = _any(3) == 0 ? _any(300) : 0;
      _device->refuses = _any(6) == 0;
    }
    _heard.prepare(_paths, _format, _latency);
  }

  void _open() {
    if (_output->loss()) _close();
    if (!_route->isOpen()) _prepareOpening();
    _session->setActive(true);
  }

  // Simulates an app that uses the session itself, even during playback.
  void _close() { _route->close(); }

  void _lose() {
    if (_crank) _crank->lose("It is gone.");
    if (_clock) _clock->lose();
    if (_device) _device->lose();
  }

  void _letTimePass() {
    if (_crank && _crank->isOpen()) {
      std::array<float, 2 * 400> frames;
      const std::size_t count = _any(400);
      _heard.take(frames.data(), count, _crank->crankInto(frames.data(), count));
    }
    for (std::uint32_t i = _any(30); i > 0; --i) std::this_thread::yield();
  }

  // Restores normal conditions: afterwards the queue has not failed.
  void _mend() {
    _queue->setRate(0);
    _settle();
    if (_queue->status() == QueuePlayer::Status::failed) _replaceFailedQueue();
  }

  // Plays the remaining items to their ends without running the main thread.
  void _playOut() {
    if (_output->loss()) _close();
    if (!_route->isOpen()) {
      _prepareOpening();
      if (_crank) _crank->stopRefusing();
      if (_device) _device->refuses = false;
    }
    _session->setActive(true);
    _queue->play();
    while (!_queue->items().empty()) _letTimePass();
    _queue->setRate(0);
  }

  // Runs the main thread until no work is left.
  void _settle() {
    const auto settled = std::async(std::launch::async, [this] { _queue->waitUntilSettled(); });
    while (settled.wait_for(std::chrono::seconds(0)) != std::future_status::ready) _runMainThread();
  }

  void _check() {
    if (_file) _hearFile();
    std::vector<std::size_t> whole(_paths.size() + 1);  // includes the broken one
    for (const Entry& each : _entries) {
      const ItemFate fate = each.item->fate();
      whole[each.place] += fate.kind == Fate::heardWhole;
      counts.lost += fate.kind == Fate::cutShort;
      counts.pending += fate.kind == Fate::pending;
      counts.lost += fate.kind == Fate::pending && !_isInQueue(*each.item);
    }
    counts.lost += whole.back();
    for (std::size_t i = 0; i < _paths.size(); ++i) {
      const std::size_t heard = i < _heard.whole().size() ? _heard.whole()[i] : 0;
      counts.unheard += whole[i] - std::min(whole[i], heard);
      counts.heardWhole += whole[i];
    }
    counts.removed += _countOf("removed") + _countOf("ended early");
    _checkLines(kFailedLine, _countOf("has failed"), counts.failed);
    _checkLinesOfBroken();
  }

  bool _isInQueue(const FilePlayerItem& item) const {
    const auto items = _queue->items();
    return std::any_of(items.begin(), items.end(),
                       [&](const auto& each) { return each.get() == &item; });
  }

  void _checkLinesOfBroken() {
    const auto leftOut = std::count_if(_entries.begin(), _entries.end(), [](const Entry& each) {
      return each.item->fate().kind == Fate::leftOut;
    });
    const auto lines = _log->lines();
    counts.leftOut += static_cast<std::uint64_t>(leftOut);
    counts.lines +=
        leftOut != std::count_if(lines.begin(), lines.end(), [](const std::string& line) {
          return line.find("cannot be played") != std::string::npos;
        });
  }

  void _hearFile() {
    _close();
    if (!std::filesystem::exists(_folder.path("heard.wav"))) return;  // never opened
    const Sound sound = readSound(_folder.path("heard.wav"));
    std::filesystem::remove(_folder.path("heard.wav"));
    if (sound.samples.empty()) return;
    std::vector<float> frames;
    for (const short sample : sound.samples)
      frames.push_back(static_cast<float>(sample) / 32'768.0f);
    const std::size_t count = frames.size() / static_cast<std::size_t>(_format.channels);
    _heard.take(frames.data(), count, count);
  }

  std::size_t _countOf(std::string_view message) const {
    return static_cast<std::size_t>(
        std::count_if(_entries.begin(), _entries.end(), [&](const Entry& each) {
          return each.item->fate().message.find(message) != std::string::npos;
        }));
  }

  bool _isAnyQueued() const {
    return std::any_of(_entries.begin(), _entries.end(),
                       [](const Entry& each) { return each.item->isQueued(); });
  }

  void _checkLines(std::string_view text, std::size_t items, std::uint64_t& total) {
    total += items;
    counts.lines += _told(text) != items;
  }

  // The sum of the numbers of dropped items in the lines with `text`.
  std::size_t _told(std::string_view text) const {
    std::size_t told = 0;
    for (const std::string& line : _log->lines()) {
      const std::size_t place = line.find(text);
      if (place != line.npos) told += std::stoul(line.substr(place + text.size()));
    }
    return told;
  }

  std::mt19937 _random;
  const std::shared_ptr<FakeSystemLog> _log;
  const RecordingFolder _folder;
  std::vector<std::string> _paths;
  std::string _broken;
  RunLoop _loop;
  WaitingObserver _observer{_loop};
  HeardRecordings _heard;
  AudioFormat _format;
  std::size_t _latency = 0;
  std::shared_ptr<AudioOutput> _output;
  std::shared_ptr<CrankedOutput> _crank;  // one of these four is _output
  std::shared_ptr<ClockOutput> _clock;
  std::shared_ptr<FileOutput> _file;
  std::shared_ptr<MoodyDevice> _device;
  std::shared_ptr<AudioRoute> _route;
  std::unique_ptr<DesktopAudioSession> _session;
  std::shared_ptr<DesktopQueuePlayer> _queue;
  std::vector<Entry> _entries;  // of this round
};

}  // namespace marlune

#endif  // MARLUNE_TESTS_SUPPORT_ENGINE_SCHEDULE_H_
