#ifndef MARLUNE_DESKTOP_AUDIO_DESKTOP_QUEUE_PLAYER_H_
#define MARLUNE_DESKTOP_AUDIO_DESKTOP_QUEUE_PLAYER_H_

#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "marlune/desktop/audio/output/audio_route.h"
#include "marlune/desktop/audio/queue/queue_engine.h"
#include "marlune/playback/queue_player.h"

namespace marlune {

// A gap-free queue of .aif and .aifc files over an AudioRoute. It plays while an audio session has
// the route open. It fails (see status) if it has to play while the route is closed, or if the
// output is lost, refused or stalled. A failed queue has dropped its items, logged one line with
// the reason and their number, and accepts no more items. It opens the route itself in one case
// only: the session was deactivated while the queue was running empty, and an item is inserted.
//
// Observers are called after every change, on a thread of the queue; changes that come faster than
// they can be delivered are merged. Sound does not wait for observers.
//
// There is only one speed: rate 0 pauses; any other rate is stored and plays at normal speed. Of
// several queues over one route, the last one started is audible.
//
// Threads: as for QueuePlayer; waitUntilSettled() also on other threads.
class DesktopQueuePlayer : public QueuePlayer {
 public:
  static std::shared_ptr<DesktopQueuePlayer> overRoute(std::shared_ptr<AudioRoute> route);
  ~DesktopQueuePlayer() override { _engine->stop(); }

  // Items can be inserted before other items only until the first of those has been decoded.
  bool canInsert(const PlayerItem* item, const PlayerItem* after) const override;
  void insert(std::shared_ptr<PlayerItem> item, const PlayerItem* after) override;
  void play() override { setRate(1); }
  float rate() const override { return _engine->rate(); }
  void setRate(float rate) override { _engine->setRate(rate); }
  void removeAllItems() override { _engine->removeAllItems(); }
  std::vector<std::shared_ptr<PlayerItem>> items() const override { return _engine->items(); }
  std::shared_ptr<PlayerItem> currentItem() const override { return _engine->currentItem(); }
  Status status() const override { return _engine->status(); }
  bool removeUnbegun(std::span<const std::shared_ptr<PlayerItem>> items) override {
    return _engine->removeUnbegun(items);
  }
  bool endEarly(const PlayerItem* item, double fadeSeconds) override {
    return _engine->endEarly(item, fadeSeconds);
  }
  std::optional<double> secondsHeard() const override { return _engine->secondsHeard(); }
  double latencySeconds() const override { return _engine->latencySeconds(); }
  float volume() const override { return _engine->volume(); }
  void setVolume(float volume) override { _engine->setVolume(volume); }
  void setAllowsExternalPlayback(bool) override {}  // this machine's output is the only one
  void addObserver(QueuePlayerObserver* observer, std::string_view keyPath,
                   unsigned options) override;
  void removeObserver(QueuePlayerObserver* observer, std::string_view keyPath) override;

  // Returns when there is nothing to do until the output takes more sound or an operation is
  // called: the queue is decoded as far ahead as allowed, items that were heard are removed, and
  // observers have been called. For programs that drive a CrankedOutput. Do not call it from an
  // observer.
  void waitUntilSettled() { _engine->waitUntilSettled(); }

 private:
  explicit DesktopQueuePlayer(std::shared_ptr<AudioRoute> route)
      : _engine(std::make_shared<QueueEngine>(std::move(route))) {}

  const std::shared_ptr<QueueEngine> _engine;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_DESKTOP_QUEUE_PLAYER_H_
