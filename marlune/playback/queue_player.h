#ifndef MARLUNE_PLAYBACK_QUEUE_PLAYER_H_
#define MARLUNE_PLAYBACK_QUEUE_PLAYER_H_

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "marlune/util/describable.h"

namespace marlune {

class QueuePlayer;

// One recording to be played once: the file and what the queue knows of it. An item belongs to at
// most one queue, and to that only once.
class PlayerItem : public Describable {
 public:
  virtual const std::string& path() const = 0;  // of the file, which need not be readable
};

// Who is told that a queue has changed.
class QueuePlayerObserver {
 public:
  virtual ~QueuePlayerObserver() = default;

  // `keyPath` of `object` has a new value. Called on any thread, mostly the queue's own
  // notification thread, which holds no lock meanwhile and waits for the return.
  virtual void observeValueForKeyPath(std::string_view keyPath,
                                      const std::shared_ptr<QueuePlayer>& object) = 0;
};

// A queue of items that play back to back without a gap. A new queue is empty, stopped (rate 0)
// and touches no sound device until it plays.
//
// When an item has been heard to its end it leaves the queue and the next becomes the current one;
// after the last, the current item is none while the rate stays as it is. An item that turns out
// unplayable is left out, with a line in the log.
//
// Threads: the main thread only. Observers are called on any thread.
class QueuePlayer : public std::enable_shared_from_this<QueuePlayer> {
 public:
  enum class Status { unknown = 0, readyToPlay = 1, failed = 2 };

  // Options of an observation, as bits.
  enum ObservingOption : unsigned {
    kNewValue = 1,      // told after every change
    kInitialValue = 4,  // and told once during addObserver, with the value as it is
  };

  static constexpr std::string_view kCurrentItemKeyPath = "currentItem";
  static constexpr std::string_view kStatusKeyPath = "status";

  virtual ~QueuePlayer() = default;

  // Whether `item` may stand right behind `after`, or at the end when `after` is null. Never true
  // for a null item, one that is in a queue already, or when `after` is not in this queue.
  // Changes nothing.
  virtual bool canInsert(const PlayerItem* item, const PlayerItem* after) const = 0;

  // REQUIRES: canInsert(item, after). The queue shares the item until it has left.
  virtual void insert(std::shared_ptr<PlayerItem> item, const PlayerItem* after) = 0;

  // Plays from the current item on: sets the rate to 1.
  virtual void play() = 0;

  virtual float rate() const = 0;  // 0 is stopped, 1 is normal speed
  virtual void setRate(float rate) = 0;

  // Drops everything, the current item included, which falls silent at once.
  virtual void removeAllItems() = 0;

  virtual std::vector<std::shared_ptr<PlayerItem>> items() const = 0;  // the current one first
  virtual std::shared_ptr<PlayerItem> currentItem() const = 0;         // nullptr when empty
  virtual Status status() const = 0;  // failed is final: the queue plays nothing any more

  // Whether sound may go to another device's player; false keeps it on this device.
  virtual void setAllowsExternalPlayback(bool allows) = 0;

  // The observer is not owned and must be removed before it ends. After removeObserver it is not
  // told of anything new; a notification under way may still be delivered.
  virtual void addObserver(QueuePlayerObserver* observer, std::string_view keyPath,
                           unsigned options) = 0;
  virtual void removeObserver(QueuePlayerObserver* observer, std::string_view keyPath) = 0;
};

}  // namespace marlune

#endif  // MARLUNE_PLAYBACK_QUEUE_PLAYER_H_
