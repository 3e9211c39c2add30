#ifndef MARLUNE_TESTS_FAKES_FAKE_QUEUE_PLAYER_H_
#define MARLUNE_TESTS_FAKES_FAKE_QUEUE_PLAYER_H_

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "marlune/playback/queue_player.h"

namespace marlune {

class FakePlayerItem : public PlayerItem {
 public:
  explicit FakePlayerItem(std::string path) : _path(std::move(path)) {}
  const std::string& path() const override { return _path; }
  std::string description() const override { return "<item " + _path + ">"; }

  bool isQueued = false;

 private:
  std::string _path;
};

// A queue without sound, whose items end when the test decides. Observers are notified immediately,
// on the thread that changes the queue.
class FakeQueuePlayer : public QueuePlayer {
 public:
  // Simulates the current item playing to its end.
  void finishCurrentItem() { _remove(_items.begin(), _items.begin() + 1); }

  // Simulates the failure of the media service.
  void fail() {
    _status = Status::failed;
    _notify(kStatusKeyPath, _observations);
  }

  // Simulates a notification that was under way while its observer was removed.
  void notifyLate(std::string_view keyPath) { _notify(keyPath, _formerObservations); }

  bool refusesItems = false;
  bool allowsExternalPlayback = true;
  int timesPlayed = 0;
  int observations() const { return static_cast<int>(_observations.size()); }

  bool canInsert(const PlayerItem* item, const PlayerItem* after) const override {
    if (!item || refusesItems || static_cast<const FakePlayerItem*>(item)->isQueued) return false;
    return !after || _find(after) != _items.end();
  }

  void insert(std::shared_ptr<PlayerItem> item, const PlayerItem* after) override {
    static_cast<FakePlayerItem&>(*item).isQueued = true;
    const auto place = _find(after);
    _items.insert(place == _items.end() ? place : place + 1, std::move(item));
    if (_items.size() == 1) _notify(kCurrentItemKeyPath, _observations);
  }

  void play() override {
    ++timesPlayed;
    _rate = 1;
  }
  float rate() const override { return _rate; }
  void setRate(float rate) override { _rate = rate; }
  void removeAllItems() override { _remove(_items.begin(), _items.end()); }

  std::vector<std::shared_ptr<PlayerItem>> items() const override { return _items; }
  std::shared_ptr<PlayerItem> currentItem() const override {
    return _items.empty() ? nullptr : _items.front();
  }
  Status status() const override { return _status; }
  void setAllowsExternalPlayback(bool allows) override { allowsExternalPlayback = allows; }

  void addObserver(QueuePlayerObserver* observer, std::string_view keyPath,
                   unsigned options) override {
    _observations.push_back({observer, std::string(keyPath), options});
    if (options & kInitialValue) observer->observeValueForKeyPath(keyPath, shared_from_this());
  }
  void removeObserver(QueuePlayerObserver* observer, std::string_view keyPath) override {
    const auto kept = std::stable_partition(
        _observations.begin(), _observations.end(), [&](const Observation& each) {
          return each.observer != observer || each.keyPath != keyPath;
        });
    _formerObservations.insert(_formerObservations.end(), kept, _observations.end());
    _observations.erase(kept, _observations.end());
  }

 private:
  using Items = std::vector<std::shared_ptr<PlayerItem>>;
  struct Observation {
    QueuePlayerObserver* observer;
    std::string keyPath;
    unsigned options;
  };

  Items::const_iterator _find(const PlayerItem* item) const {
    return std::find_if(_items.begin(), _items.end(),
                        [item](const auto& each) { return each.get() == item; });
  }

  void _remove(Items::iterator first, Items::iterator last) {
    if (first == last) return;
    for (auto each = first; each != last; ++each) {
      static_cast<FakePlayerItem&>(**each).isQueued = false;
    }
    _items.erase(first, last);
    _notify(kCurrentItemKeyPath, _observations);
  }

  // By value: an observer may remove itself.
  void _notify(std::string_view keyPath, const std::vector<Observation> observations) {
    const auto self = shared_from_this();
    for (const auto& each : observations) {
      if (each.keyPath == keyPath && (each.options & kNewValue)) {
        each.observer->observeValueForKeyPath(keyPath, self);
      }
    }
  }

  Items _items;
  std::vector<Observation> _observations, _formerObservations;
  float _rate = 0;
  Status _status = Status::unknown;
};

}  // namespace marlune

#endif  // MARLUNE_TESTS_FAKES_FAKE_QUEUE_PLAYER_H_
