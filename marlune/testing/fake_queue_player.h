#ifndef MARLUNE_TESTING_FAKE_QUEUE_PLAYER_H_
#define MARLUNE_TESTING_FAKE_QUEUE_PLAYER_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "marlune/playback/queue_player.h"
#include "marlune/testing/virtual_clock.h"

namespace marlune {

// A recording without sound, whose length and outcome the test sets.
class FakePlayerItem : public PlayerItem {
 public:
  explicit FakePlayerItem(std::string path, std::optional<double> seconds = std::nullopt)
      : _path(std::move(path)), _seconds(seconds) {}
  const std::string& path() const override { return _path; }
  std::string description() const override { return "<item " + _path + ">"; }
  ItemFate fate() const override { return currentFate; }
  std::optional<double> seconds() const override { return isLengthKnown ? _seconds : std::nullopt; }
  double length() const { return _seconds.value_or(0); }
  void shorten(double seconds) { _seconds = seconds; }

  bool isLengthKnown = true;
  ItemFate outcome = ItemFate::heard(0);  // if nothing ends it early
  bool isQueued = false;
  ItemFate currentFate{};
  // By the clock; nothing before it has begun.
  std::optional<double> heardFrom{}, heardUntil{};

 private:
  std::string _path;
  std::optional<double> _seconds;
};

// A queue without sound. Observers are notified immediately, on the thread that changes the queue.
// With a clock, its items play in the clock's time; without one, they end when the test decides.
class FakeQueuePlayer : public QueuePlayer {
 public:
  explicit FakeQueuePlayer(std::shared_ptr<VirtualClock> clock = nullptr, double latencySeconds = 0)
      : _clock(std::move(clock)), _latency(latencySeconds) {}

  // Simulates the current item playing to its end. Only without a clock.
  void finishCurrentItem() { _remove(0, 1, ItemFate::heard(0)); }

  // Simulates the failure of the media service. With a clock, the items are dropped.
  void fail() {
    _catchUp();
    _status = Status::failed;
    _notify(kStatusKeyPath, _observations);
    if (!_clock) return;
    _rate = 0;
    _remove(0, _items.size(), ItemFate::dropped("the play queue has failed"));
  }

  // Simulates a notification that was under way while its observer was removed.
  void notifyLate(std::string_view keyPath) { _notify(keyPath, _formerObservations); }

  bool refusesItems = false;
  bool allowsExternalPlayback = true;
  int timesPlayed = 0;
  int observations() const { return static_cast<int>(_observations.size()); }
  // Called when an item begins.
  std::function<void(const FakePlayerItem&)> itemBegins;

  bool canInsert(const PlayerItem* item, const PlayerItem* after) const override {
    if (!item || refusesItems || _status == Status::failed) return false;
    return !static_cast<const FakePlayerItem*>(item)->isQueued && (!after || _find(after));
  }

  void insert(std::shared_ptr<PlayerItem> item, const PlayerItem* after) override {
    _catchUp();
    auto fake = std::static_pointer_cast<FakePlayerItem>(std::move(item));
    fake->isQueued = true;
    fake->currentFate = {};
    const std::size_t place = after ? _find(after).value_or(_items.size()) : _items.size();
    const auto position = after ? std::min(place + 1, _items.size()) : place;
    _items.insert(_items.begin() + static_cast<long>(position),
                  Entry{std::move(fake), _position(), std::nullopt});
    if (_items.size() == 1) _notify(kCurrentItemKeyPath, _observations);
    _catchUp();
  }

  void play() override {
    ++timesPlayed;
    setRate(1);
  }
  float rate() const override { return _rate; }
  void setRate(float rate) override {
    _catchUp();
    if (_status == Status::failed) return;
    const double position = _position();
    _positionAt = _clock ? _clock->awake() : 0;
    _positionThen = position;
    _rate = rate;
    _catchUp();
  }
  void removeAllItems() override {
    _remove(0, _items.size(), ItemFate::dropped("it was removed from the queue"));
  }

  std::vector<std::shared_ptr<PlayerItem>> items() const override {
    std::vector<std::shared_ptr<PlayerItem>> items;
    for (const Entry& each : _items) items.push_back(each.item);
    return items;
  }
  std::shared_ptr<PlayerItem> currentItem() const override {
    return _items.empty() ? nullptr : _items.front().item;
  }
  Status status() const override { return _status; }
  void setAllowsExternalPlayback(bool allows) override { allowsExternalPlayback = allows; }

  bool removeUnbegun(std::span<const std::shared_ptr<PlayerItem>> items) override {
    _catchUp();
    const auto place = items.empty() ? std::nullopt : _find(items.front().get());
    if (!place || _hasBegun(*place) || *place + items.size() > _items.size()) return false;
    for (std::size_t i = 0; i < items.size(); ++i) {
      if (_items[*place + i].item != items[i]) return false;
    }
    _remove(*place, *place + items.size(), ItemFate::dropped("it was removed from the queue"));
    _catchUp();
    return true;
  }

  bool endEarly(const PlayerItem* item, double fadeSeconds) override {
    _catchUp();
    const auto place = _find(item);
    if (!place || !_hasBegun(*place)) return false;
    Entry& entry = _items[*place];
    if (_clock && *entry.takenUntil <= _position() + kRounding) return false;
    entry.item->outcome = ItemFate::dropped("it was ended early");
    if (_rate == 0 || !_clock) {
      _free = _position();
      _remove(*place, *place + 1, entry.item->outcome);
    } else {
      _free = std::min(*entry.takenUntil, _position() + fadeSeconds);
      entry.takenUntil = _free;
      entry.item->shorten(_free - entry.takenFrom);
    }
    _catchUp();
    return true;
  }

  std::optional<double> secondsHeard() const override {
    if (!_clock) return std::nullopt;
    if (_items.empty() || !_items.front().takenUntil) return 0;
    const Entry& front = _items.front();
    return std::min(_position() - front.takenFrom - _latency, front.item->length());
  }
  double latencySeconds() const override { return _latency; }
  float volume() const override { return _volume; }
  void setVolume(float volume) override { _volume = volume; }

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
  // Times are positions: seconds that the queue has run.
  struct Entry {
    std::shared_ptr<FakePlayerItem> item;
    double takenFrom;                  // when it was inserted or, once it has begun, when that was
    std::optional<double> takenUntil;  // nothing: it has not begun
  };
  struct Observation {
    QueuePlayerObserver* observer;
    std::string keyPath;
    unsigned options;
  };

  double _position() const {
    if (!_clock || _rate == 0) return _positionThen;
    return _positionThen + _clock->awake() - _positionAt;
  }

  std::optional<std::size_t> _find(const PlayerItem* item) const {
    const auto place = std::find_if(_items.begin(), _items.end(),
                                    [item](const Entry& each) { return each.item.get() == item; });
    if (place == _items.end()) return std::nullopt;
    return static_cast<std::size_t>(place - _items.begin());
  }

  bool _hasBegun(std::size_t place) const { return _items[place].takenUntil.has_value(); }

  // The moment of the next change, and the item that begins then; otherwise the first one leaves.
  struct Change {
    double at;
    std::optional<std::size_t> beginning;
  };
  std::optional<Change> _nextChange() const {
    if (!_clock || _rate == 0 || _items.empty()) return std::nullopt;
    std::optional<Change> next;
    const auto unbegun = std::find_if(_items.begin(), _items.end(),
                                      [](const Entry& each) { return !each.takenUntil; });
    if (unbegun != _items.end()) {
      next = {std::max(_free, unbegun->takenFrom),
              static_cast<std::size_t>(unbegun - _items.begin())};
    }
    if (const auto until = _items.front().takenUntil;
        until && (!next || *until + _latency < next->at)) {
      next = {*until + _latency, std::nullopt};
    }
    return next;
  }

  void _catchUp() {
    // Without a clock, the current item of a running queue has begun.
    if (!_clock && _rate != 0 && !_items.empty() && !_hasBegun(0)) _items[0].takenUntil = 0;
    for (;;) {
      const auto next = _nextChange();
      if (!next) return;
      if (next->at > _position() + kRounding) return _catchUpAfter(next->at - _position());
      if (next->beginning) {
        _begin(*next->beginning, next->at);
      } else {
        _remove(0, 1, _items.front().item->outcome);
      }
    }
  }

  // A change that was expected earlier does no harm.
  void _catchUpAfter(double seconds) {
    const double at = _clock->awake() + seconds;
    if (_wake && *_wake <= at + kRounding && *_wake >= _clock->awake()) return;
    _wake = at;
    _clock->after(
        seconds,
        [self = weak_from_this(), this, at] {
          const auto held = self.lock();
          if (!held) return;
          if (_wake == at) _wake.reset();
          _catchUp();
        },
        VirtualClock::Kind::sound);
  }

  void _begin(std::size_t place, double at) {
    Entry& entry = _items[place];
    const auto item = entry.item;
    if (item->outcome.kind == ItemFate::Kind::leftOut) {
      return _remove(place, place + 1, item->outcome);
    }
    const bool isCutShort = item->outcome.kind == ItemFate::Kind::cutShort;
    entry.takenFrom = at;
    entry.takenUntil = _free = at + item->length() * (isCutShort ? 0.5 : 1);
    item->heardFrom = _clock->now() + at - _position() + _latency;
    if (itemBegins) itemBegins(*item);
  }

  void _remove(std::size_t first, std::size_t end, const ItemFate& fate) {
    if (first == end) return;
    for (std::size_t i = first; i < end; ++i) {
      FakePlayerItem& item = *_items[i].item;
      item.isQueued = false;
      item.currentFate = fate;
      if (_items[i].takenUntil.value_or(0) > _position() + kRounding) _free = _position();
      const bool wasHeard =
          _items[i].takenUntil && _position() > _items[i].takenFrom + _latency + kRounding;
      if (!wasHeard) item.heardFrom.reset();
      if (wasHeard) item.heardUntil = _clock->now();
    }
    _items.erase(_items.begin() + static_cast<long>(first),
                 _items.begin() + static_cast<long>(end));
    if (first == 0) _notify(kCurrentItemKeyPath, _observations);
  }

  void _notify(std::string_view keyPath, const std::vector<Observation>& notified) {
    const auto self = shared_from_this();
    // An observer may remove itself.
    const std::vector<Observation> observations(notified.begin(), notified.end());
    for (const auto& each : observations) {
      if (each.keyPath == keyPath && (each.options & kNewValue)) {
        each.observer->observeValueForKeyPath(keyPath, self);
      }
    }
  }

  static constexpr double kRounding = 1e-9;

  const std::shared_ptr<VirtualClock> _clock;
  const double _latency;
  std::vector<Entry> _items;
  std::vector<Observation> _observations, _formerObservations;
  float _rate = 0;
  float _volume = 1;
  Status _status = Status::unknown;
  double _positionThen = 0;  // when the rate was set, at the awake time _positionAt
  double _positionAt = 0;
  double _free = 0;             // when the output has taken what has begun
  std::optional<double> _wake;  // when the next change is looked for
};

}  // namespace marlune

#endif  // MARLUNE_TESTING_FAKE_QUEUE_PLAYER_H_
