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
  void fail(QueuePlayer& queue) override { static_cast<FakeQueuePlayer&>(queue).fail(); }
  void settle() override {}

 private:
  int _items = 0;
};

std::unique_ptr<QueuePlayerRig> makeFakeRig() { return std::make_unique<FakeRig>(); }

INSTANTIATE_TEST_SUITE_P(Fake, QueuePlayerContract, testing::Values(&makeFakeRig));

}  // namespace
}  // namespace marlune
