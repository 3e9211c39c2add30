#ifndef MARLUNE_TESTS_SUPPORT_QUEUE_PLAYER_CONTRACT_H_
#define MARLUNE_TESTS_SUPPORT_QUEUE_PLAYER_CONTRACT_H_

#include <gtest/gtest.h>

#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "marlune/playback/queue_player.h"

namespace marlune {

// Adapts the contract to a kind of queue. Use on one thread, the main thread.
class QueuePlayerRig {
 public:
  virtual ~QueuePlayerRig() = default;
  virtual std::shared_ptr<QueuePlayer> makeQueue() = 0;
  virtual std::shared_ptr<PlayerItem> makeItem() = 0;  // playable, and different in each call

  // Lets time pass until the current item of the playing queue has reached its end.
  virtual void finishCurrentItem(QueuePlayer& queue) = 0;
  // Lets time pass until the output has taken some sound of the current item, but not all.
  virtual void beginCurrentItem(QueuePlayer& queue) = 0;
  // Makes the queue fail, as after the loss of the device.
  virtual void fail(QueuePlayer& queue) = 0;
  // Waits until the observers have been notified of all changes.
  virtual void settle() = 0;
};

// The contract of every queue player. A program with a queue includes this in one file:
//
//     INSTANTIATE_TEST_SUITE_P(Engine, QueuePlayerContract, testing::Values(&makeEngineRig));
class QueuePlayerContract : public testing::TestWithParam<std::unique_ptr<QueuePlayerRig> (*)()> {
 protected:
  // Records the key paths of its notifications, on any thread.
  class Listener : public QueuePlayerObserver {
   public:
    void observeValueForKeyPath(std::string_view keyPath,
                                const std::shared_ptr<QueuePlayer>& object) override {
      const std::lock_guard lock(_mutex);
      _told.emplace_back(object ? keyPath : "of no queue");
    }
    std::vector<std::string> takeTold() {
      const std::lock_guard lock(_mutex);
      return std::exchange(_told, {});
    }

   private:
    std::mutex _mutex;
    std::vector<std::string> _told;
  };

  // The notifications since the last call.
  std::vector<std::string> told() {
    rig->settle();
    return listener.takeTold();
  }

  std::shared_ptr<PlayerItem> append(QueuePlayer& to, const PlayerItem* after = nullptr) {
    auto item = rig->makeItem();
    EXPECT_TRUE(to.canInsert(item.get(), after));
    to.insert(item, after);
    return item;
  }

  using Items = std::vector<std::shared_ptr<PlayerItem>>;
  using Told = std::vector<std::string>;
  Listener listener;  // outlives the queue
  const std::unique_ptr<QueuePlayerRig> rig = GetParam()();
  const std::shared_ptr<QueuePlayer> queue = rig->makeQueue();
};

TEST_P(QueuePlayerContract, TakesAnItemOnceAndOnlyBehindOneOfItsOwn) {
  const auto other = rig->makeQueue();
  const auto item = append(*queue), foreign = append(*other), fresh = rig->makeItem();
  const struct {
    std::string_view why;
    const PlayerItem *item, *after;
    bool canInsert;
  } kCases[] = {
      {"at the end", fresh.get(), nullptr, true},
      {"after one of its own items", fresh.get(), item.get(), true},
      {"no item", nullptr, nullptr, false},
      {"an item already in the queue", item.get(), nullptr, false},
      {"an item of another queue", foreign.get(), nullptr, false},
      {"after an item of another queue", fresh.get(), foreign.get(), false},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(queue->canInsert(c.item, c.after), c.canInsert);
  }
  EXPECT_EQ(queue->items(), Items{item});
  EXPECT_EQ(other->items(), Items{foreign});
}

TEST_P(QueuePlayerContract, StartsEmptyAndInsertsAtTheEndOrBehindAnItem) {
  EXPECT_EQ(queue->currentItem(), nullptr);
  EXPECT_EQ(queue->rate(), 0);
  const auto first = append(*queue), third = append(*queue);
  const auto second = append(*queue, first.get()), fourth = append(*queue, third.get());
  EXPECT_EQ(queue->items(), (Items{first, second, third, fourth}));
  EXPECT_EQ(queue->currentItem(), first);
}

TEST_P(QueuePlayerContract, ItemsLeaveAsTheyAreHeardAndTheRateStays) {
  const auto first = append(*queue), second = append(*queue);
  EXPECT_EQ(queue->rate(), 0);
  queue->play();
  EXPECT_EQ(queue->rate(), 1);
  rig->finishCurrentItem(*queue);
  EXPECT_EQ(queue->currentItem(), second);
  EXPECT_EQ(queue->items(), Items{second});
  rig->finishCurrentItem(*queue);
  EXPECT_EQ(queue->currentItem(), nullptr);
  EXPECT_EQ(queue->items(), Items());
  EXPECT_EQ(queue->rate(), 1);

  const auto late = append(*queue);  // a running queue plays a new item
  rig->finishCurrentItem(*queue);
  EXPECT_EQ(queue->items(), Items());
}

TEST_P(QueuePlayerContract, RemovesEverythingAtOnce) {
  append(*queue), append(*queue);
  queue->play();
  queue->setRate(0);
  EXPECT_EQ(queue->rate(), 0);
  queue->removeAllItems();
  EXPECT_EQ(queue->items(), Items());
  EXPECT_EQ(queue->currentItem(), nullptr);
  queue->removeAllItems();  // the queue is already empty
  const auto next = append(*queue);
  EXPECT_EQ(queue->currentItem(), next);
}

TEST_P(QueuePlayerContract, RemovesNeighboursThatHaveNotBegunAndEndsTheOneThatHas) {
  const Items items{append(*queue), append(*queue), append(*queue), append(*queue), append(*queue)};
  const std::span all(items);
  EXPECT_TRUE(queue->removeUnbegun(all.subspan(4))) << "while stopped";
  queue->play();
  rig->beginCurrentItem(*queue);
  EXPECT_FALSE(queue->removeUnbegun(all.first(2))) << "the first one has begun";
  EXPECT_FALSE(queue->removeUnbegun(Items{items[1], items[3]})) << "no neighbours";
  EXPECT_FALSE(queue->removeUnbegun(all.subspan(4))) << "is in no queue";
  EXPECT_EQ(queue->items(), Items(items.begin(), items.begin() + 4));
  EXPECT_TRUE(queue->removeUnbegun(all.subspan(1, 2)));
  EXPECT_EQ(queue->items(), (Items{items[0], items[3]}));
  EXPECT_EQ(items[1]->fate().kind, ItemFate::Kind::dropped);

  EXPECT_FALSE(queue->endEarly(items[3].get(), 0)) << "it has not begun";
  EXPECT_TRUE(queue->endEarly(items[0].get(), 0));
  if (queue->currentItem() == items[0]) rig->finishCurrentItem(*queue);
  EXPECT_EQ(items[0]->fate().kind, ItemFate::Kind::dropped);
  rig->beginCurrentItem(*queue);
  queue->setRate(0);
  EXPECT_TRUE(queue->endEarly(items[3].get(), 10)) << "at once, while stopped";
  EXPECT_EQ(queue->items(), Items());

  const auto next = append(*queue);
  queue->play();
  rig->finishCurrentItem(*queue);
  EXPECT_EQ(next->fate().kind, ItemFate::Kind::heardWhole);
}

TEST_P(QueuePlayerContract, TellsOfEveryChangeOfTheCurrentItem) {
  const Told once{std::string(QueuePlayer::kCurrentItemKeyPath)};
  queue->addObserver(&listener, QueuePlayer::kCurrentItemKeyPath, QueuePlayer::kNewValue);
  EXPECT_EQ(told(), Told()) << "the initial value was not requested";
  append(*queue);
  EXPECT_EQ(told(), once);
  append(*queue);
  EXPECT_EQ(told(), Told()) << "the current item is the same";
  queue->play();
  rig->finishCurrentItem(*queue);
  EXPECT_EQ(told(), once);
  queue->removeAllItems();
  EXPECT_EQ(told(), once);
  queue->removeObserver(&listener, QueuePlayer::kCurrentItemKeyPath);
  append(*queue);
  EXPECT_EQ(told(), Told());
}

TEST_P(QueuePlayerContract, TellsTheStatusAtOnceAndTheFailureThatIsFinal) {
  const Told once{std::string(QueuePlayer::kStatusKeyPath)};
  append(*queue);
  queue->play();
  rig->settle();
  queue->addObserver(&listener, QueuePlayer::kStatusKeyPath,
                     QueuePlayer::kNewValue | QueuePlayer::kInitialValue);
  EXPECT_EQ(listener.takeTold(), once);
  EXPECT_NE(queue->status(), QueuePlayer::Status::failed);
  rig->fail(*queue);
  EXPECT_EQ(told(), once);
  EXPECT_EQ(queue->status(), QueuePlayer::Status::failed);
  queue->removeAllItems();
  queue->play();
  EXPECT_EQ(told(), Told());
  EXPECT_EQ(queue->status(), QueuePlayer::Status::failed);
  queue->removeObserver(&listener, QueuePlayer::kStatusKeyPath);
}

}  // namespace marlune

#endif  // MARLUNE_TESTS_SUPPORT_QUEUE_PLAYER_CONTRACT_H_
