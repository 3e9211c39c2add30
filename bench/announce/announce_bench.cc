// What an announcer adds to a phrase that was prepared before: the same three recordings, said by a
// player and by an announcer, on a queue that only keeps its items.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "marlune/announce.h"
#include "support/counted_allocation.h"

namespace marlune {
namespace {

class BenchItem : public PlayerItem {
 public:
  explicit BenchItem(std::string path) : _path(std::move(path)) {}
  const std::string& path() const override { return _path; }
  std::string description() const override { return _path; }
  ItemFate fate() const override { return currentFate; }
  std::optional<double> seconds() const override { return 1; }

  ItemFate currentFate;

 private:
  std::string _path;
};

class BenchQueue : public QueuePlayer {
 public:
  void finish() {
    while (!_items.empty()) {
      static_cast<BenchItem&>(*_items.front()).currentFate = ItemFate::heard(0);
      _items.erase(_items.begin());
      _observer->observeValueForKeyPath(kCurrentItemKeyPath, shared_from_this());
    }
  }
  bool canInsert(const PlayerItem* item, const PlayerItem*) const override { return item; }
  void insert(std::shared_ptr<PlayerItem> item, const PlayerItem*) override {
    _items.push_back(std::move(item));
  }
  void play() override { _rate = 1; }
  float rate() const override { return _rate; }
  void setRate(float rate) override { _rate = rate; }
  void removeAllItems() override { _items.clear(); }
  std::vector<std::shared_ptr<PlayerItem>> items() const override { return _items; }
  std::shared_ptr<PlayerItem> currentItem() const override {
    return _items.empty() ? nullptr : _items.front();
  }
  Status status() const override { return Status::readyToPlay; }
  void setAllowsExternalPlayback(bool) override {}
  void addObserver(QueuePlayerObserver* observer, std::string_view keyPath, unsigned) override {
    if (keyPath == kCurrentItemKeyPath) _observer = observer;
  }
  void removeObserver(QueuePlayerObserver*, std::string_view) override {}

 private:
  std::vector<std::shared_ptr<PlayerItem>> _items;
  QueuePlayerObserver* _observer = nullptr;
  float _rate = 0;
};

class BenchSession : public AudioSession {
 public:
  Outcome setCategory(std::string_view, unsigned) override { return {}; }
  Outcome setActive(bool) override { return {}; }
};

class BenchBundle : public ResourceBundle {
 public:
  std::vector<std::string> pathsForResourcesOfType(std::string_view,
                                                   std::string_view) const override {
    return {"/voice/run.aif", "/voice/five.aif", "/voice/kilometers.aif"};
  }
  std::optional<std::string> pathForResource(std::string_view name, std::string_view,
                                             std::string_view) const override {
    return "/voice/" + std::string(name) + ".aif";
  }
};

// The queue of the process; made once.
std::shared_ptr<BenchQueue>& queue() {
  static std::shared_ptr<BenchQueue> queue;
  return queue;
}

void setUp() {
  Platform& platform = Platform::shared();
  platform.audioSession = std::make_shared<BenchSession>();
  platform.makeQueuePlayer = [] { return queue() = std::make_shared<BenchQueue>(); };
  platform.makePlayerItem = [](const std::string& path) {
    return std::make_shared<BenchItem>(path);
  };
}

const std::vector<std::string> kWords = {"run", "five", "kilometers"};

template <typename Say>
void measure(benchmark::State& state, const Say& say) {
  say();  // fills what is kept
  const std::uint64_t before = allocationCount().calls;
  for (auto _ : state) say();
  state.counters["allocations"] = benchmark::Counter(
      static_cast<double>(allocationCount().calls - before), benchmark::Counter::kAvgIterations);
}

void BM_SaidByAPlayer(benchmark::State& state) {
  setUp();
  const auto player = Player::initWithDirectory("", std::make_shared<BenchBundle>());
  measure(state, [&] {
    player->playSoundFilesInSequence(kWords);
    queue()->finish();
  });
}
BENCHMARK(BM_SaidByAPlayer);

void BM_SaidByAnAnnouncerPrepared(benchmark::State& state) {
  setUp();
  const auto bundle = std::make_shared<BenchBundle>();
  const auto announcer =
      Announcer::initWithParser(nullptr, Decomposer::initWithDirectory("", bundle), "", bundle);
  std::size_t ends = 0;
  announcer->setObserver({.ended = [&](AnnouncementId, const AnnouncementEnd& end) {
    ends += end.kind == AnnouncementEnd::Kind::finished;
  }});
  const auto phrase = announcer->prepare(kWords).phrase();
  std::size_t said = 0;
  measure(state, [&] {
    announcer->say({.prepared = phrase, .priority = 1, .startWithin = 5});
    queue()->finish();
    ++said;
  });
  if (ends != said) state.SkipWithError("not every announcement was finished");
}
BENCHMARK(BM_SaidByAnAnnouncerPrepared);

}  // namespace
}  // namespace marlune
