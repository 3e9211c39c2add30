#ifndef MARLUNE_DESKTOP_AUDIO_DESKTOP_QUEUE_PLAYER_H_
#define MARLUNE_DESKTOP_AUDIO_DESKTOP_QUEUE_PLAYER_H_

#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "marlune/desktop/audio/audio_route.h"
#include "marlune/desktop/audio/queue_engine.h"
#include "marlune/playback/queue_player.h"

namespace marlune {

// A gap-free queue of .aif and .aifc files over an AudioRoute. It plays while an audio session has
// the route open, and fails (status) when it is to play and the route is closed, or its output is
// lost, refused or stalled. A queue that failed has dropped its items, with one line that says why
// and how many, and takes no more. It opens the route in one case only: the session was deactivated
// while the queue ran on empty, and an item is inserted.
//
// Observers are called after every change, on a thread of the queue's own; for changes that follow
// one another faster than they can be delivered, once. Sound does not wait for observers.
//
// There is one speed: 0 pauses, and every other rate is kept and plays at normal speed. Of several
// queues over one route, the one that was told last to play is heard.
class DesktopQueuePlayer : public QueuePlayer {
 public:
  static std::shared_ptr<DesktopQueuePlayer> overRoute(std::shared_ptr<AudioRoute> route);
  ~DesktopQueuePlayer() override { _engine->stop(); }

  // Behind an item that others follow there is room only until the first of those is decoded.
  bool canInsert(const PlayerItem* item, const PlayerItem* after) const override;
  void insert(std::shared_ptr<PlayerItem> item, const PlayerItem* after) override;
  void play() override { setRate(1); }
  float rate() const override { return _engine->rate(); }
  void setRate(float rate) override { _engine->setRate(rate); }
  void removeAllItems() override { _engine->removeAllItems(); }
  std::vector<std::shared_ptr<PlayerItem>> items() const override { return _engine->items(); }
  std::shared_ptr<PlayerItem> currentItem() const override;
  Status status() const override { return _engine->status(); }
  void setAllowsExternalPlayback(bool) override {}  // there is but this machine's output
  void addObserver(QueuePlayerObserver* observer, std::string_view keyPath,
                   unsigned options) override;
  void removeObserver(QueuePlayerObserver* observer, std::string_view keyPath) override;

  // Returns when nothing is left to be done until the output takes more or something is called:
  // decoded as far ahead as may be, items that were heard gone, observers told. For programs that
  // turn the crank of an output themselves. Never from an observer.
  void waitUntilSettled() { _engine->waitUntilSettled(); }

 private:
  explicit DesktopQueuePlayer(std::shared_ptr<AudioRoute> route)
      : _engine(std::make_shared<QueueEngine>(std::move(route))) {}

  const std::shared_ptr<QueueEngine> _engine;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_DESKTOP_QUEUE_PLAYER_H_
