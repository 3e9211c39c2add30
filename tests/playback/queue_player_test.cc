#include "marlune/testing/fake_queue_player.h"
#include "support/queue_player_contract.h"

namespace marlune {
namespace {

class FakeRig : public QueuePlayerRig {
 public:
  std::shared_ptr<QueuePlayer> makeQueue() override { return std::make_shared<FakeQueuePlayer>(); }
  std::shared_ptr<PlayerItem> makeItem() override {
    return std::make_shared<FakePlayerItem>(std::to_string(++_items));
  }
  void finishCurrentItem(QueuePlayer& queue) override {
    static_cast<FakeQueuePlayer&>(queue).finishCurrentItem();
  }
  void beginCurrentItem(QueuePlayer&) override {}
  void fail(QueuePlayer& queue) override { static_cast<FakeQueuePlayer&>(queue).fail(); }
  void settle() override {}

 private:
  int _items = 0;
};

// With a clock.
class TimedFakeRig : public QueuePlayerRig {
 public:
  std::shared_ptr<QueuePlayer> makeQueue() override {
    return std::make_shared<FakeQueuePlayer>(_clock, /*latencySeconds=*/0.25);
  }
  std::shared_ptr<PlayerItem> makeItem() override {
    return std::make_shared<FakePlayerItem>(std::to_string(++_items), 1);
  }
  void finishCurrentItem(QueuePlayer& queue) override {
    const auto item = queue.currentItem();
    for (int i = 0; i < 1'000 && queue.currentItem() == item; ++i) _clock->advance(0.01);
  }
  void beginCurrentItem(QueuePlayer&) override { _clock->advance(0.01); }
  void fail(QueuePlayer& queue) override { static_cast<FakeQueuePlayer&>(queue).fail(); }
  void settle() override {}

 private:
  const std::shared_ptr<VirtualClock> _clock = std::make_shared<VirtualClock>();
  int _items = 0;
};

std::unique_ptr<QueuePlayerRig> makeTimedFakeRig() { return std::make_unique<TimedFakeRig>(); }
INSTANTIATE_TEST_SUITE_P(TimedFake, QueuePlayerContract, testing::Values(&makeTimedFakeRig));

std::unique_ptr<QueuePlayerRig> makeFakeRig() { return std::make_unique<FakeRig>(); }

INSTANTIATE_TEST_SUITE_P(Fake, QueuePlayerContract, testing::Values(&makeFakeRig));

}  // namespace
}  // namespace marlune
