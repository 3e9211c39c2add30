// Runs the contract of all queue players against the queue engine.

#include "support/engine_rig.h"
#include "support/queue_player_contract.h"

namespace marlune {
namespace {

constexpr std::size_t kFrames = 100;

class CrankedContractRig : public QueuePlayerRig {
 public:
  CrankedContractRig() { _engine.session.setActive(true); }

  std::shared_ptr<QueuePlayer> makeQueue() override {
    _queues.push_back(_engine.makeQueue());
    return _queues.back();
  }
  std::shared_ptr<PlayerItem> makeItem() override {
    return std::make_shared<FilePlayerItem>(_path);
  }
  void finishCurrentItem(QueuePlayer& queue) override {
    const auto item = queue.currentItem();
    while (queue.currentItem() == item) _engine.crank(static_cast<DesktopQueuePlayer&>(queue), 1);
  }
  void beginCurrentItem(QueuePlayer& queue) override {
    _engine.crank(static_cast<DesktopQueuePlayer&>(queue), 1);
  }
  void fail(QueuePlayer&) override { _engine.output->lose("It is gone."); }
  void settle() override {
    for (const auto& queue : _queues) queue->waitUntilSettled();
  }

 private:
  RecordingFolder _folder;
  const std::string _path = _folder.write("item.aif", countingSamples(kFrames, 0), {22'050, 1});
  EngineRig _engine;
  std::vector<std::shared_ptr<DesktopQueuePlayer>> _queues;
};

std::unique_ptr<QueuePlayerRig> makeEngineRig() { return std::make_unique<CrankedContractRig>(); }

INSTANTIATE_TEST_SUITE_P(Engine, QueuePlayerContract, testing::Values(&makeEngineRig));

}  // namespace
}  // namespace marlune
