#ifndef MARLUNE_PLAYBACK_QUEUE_PLAYER_H_
#define MARLUNE_PLAYBACK_QUEUE_PLAYER_H_

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "marlune/platform/visibility.h"
#include "marlune/playback/item_fate.h"
#include "marlune/util/describable.h"

namespace marlune {

class QueuePlayer;

// One recording, to be played once: its file and the queue's state for it. An item belongs to at
// most one queue, and is in that queue only once.
//
// Announcers need the operations that have a default here and in QueuePlayer; players do not.
class MARLUNE_API PlayerItem : public Describable {
 public:
  virtual const std::string& path() const = 0;  // of the file, which may be unreadable

  // The outcome for the item. Pending until it has left its queue, and from then on never pending.
  virtual ItemFate fate() const { return {}; }
  // Its length, if known; as much as will be heard if it was ended early.
  virtual std::optional<double> seconds() const { return std::nullopt; }
};

// Receives notifications of a queue's changes.
class MARLUNE_API QueuePlayerObserver {
 public:
  virtual ~QueuePlayerObserver() = default;

  // The value at `keyPath` of `object` has changed. Called on any thread, usually the queue's
  // notification thread, which holds no lock during the call and waits for it to return.
  virtual void observeValueForKeyPath(std::string_view keyPath,
                                      const std::shared_ptr<QueuePlayer>& object) = 0;
};

// A queue of items that play back to back without a gap. A new queue is empty, stopped (rate 0) and
// opens no sound device until it plays.
//
// An item that has been played to its end leaves the queue, and the next one becomes the current
// item. After the last item there is no current item; the rate stays as it is. An item that turns
// out to be unplayable is skipped after a log line.
//
// Threads: the main thread only. Observers are called on any thread.
class MARLUNE_API QueuePlayer : public std::enable_shared_from_this<QueuePlayer> {
 public:
  enum class Status { unknown = 0, readyToPlay = 1, failed = 2 };

  // Options of an observation, a bit set.
  enum ObservingOption : unsigned {
    kNewValue = 1,      // notify after every change
    kInitialValue = 4,  // notify once during addObserver, with the current value
  };

  static constexpr std::string_view kCurrentItemKeyPath = "currentItem";
  static constexpr std::string_view kStatusKeyPath = "status";

  virtual ~QueuePlayer() = default;

  // Whether `item` may be inserted right after `after`, or at the end when `after` is null. False
  // for a null item, for one that is already in a queue, and when `after` is not in this queue.
  // Changes nothing.
  virtual bool canInsert(const PlayerItem* item, const PlayerItem* after) const = 0;

  // REQUIRES: canInsert(item, after). The queue shares ownership of the item until the item leaves.
  virtual void insert(std::shared_ptr<PlayerItem> item, const PlayerItem* after) = 0;

  // Plays from the current item on: sets the rate to 1.
  virtual void play() = 0;

  virtual float rate() const = 0;  // 0 is stopped, 1 is normal speed
  virtual void setRate(float rate) = 0;

  // Removes all items. The current one falls silent at once.
  virtual void removeAllItems() = 0;

  virtual std::vector<std::shared_ptr<PlayerItem>> items() const = 0;  // the current one first
  virtual std::shared_ptr<PlayerItem> currentItem() const = 0;         // nullptr when empty
  virtual Status status() const = 0;  // failed is final: the queue never plays again

  // Whether another device may play the sound; false keeps it on this device.
  virtual void setAllowsExternalPlayback(bool allows) = 0;

  // Removes `items`, which are neighbours in the queue, if the output has not taken any sound of
  // the first of them; otherwise removes none. Returns whether they were removed.
  virtual bool removeUnbegun(std::span<const std::shared_ptr<PlayerItem>> items) {
    static_cast<void>(items);
    return false;
  }

  // Ends `item` before its end, if the output is taking its sound now: it fades to silence within
  // `fadeSeconds`, and the next item follows without a gap. It leaves the queue when the last of
  // that has been heard; at once if the rate is 0. Returns false otherwise, and changes nothing.
  virtual bool endEarly(const PlayerItem* item, double fadeSeconds) {
    static_cast<void>(item), static_cast<void>(fadeSeconds);
    return false;
  }

  // How much of the current item has been heard, in seconds; negative as long as the output has
  // taken its first sound, and it is not heard yet. Nothing if the queue does not know.
  virtual std::optional<double> secondsHeard() const { return std::nullopt; }

  // Seconds from when the output takes sound until it is heard.
  virtual double latencySeconds() const { return 0; }

  // A factor for the samples, 1 at first.
  virtual float volume() const { return 1; }
  virtual void setVolume(float volume) { static_cast<void>(volume); }

  // The observer is not owned and must be removed before it is destroyed. After removeObserver no
  // new notification is sent; one already under way may still be delivered.
  virtual void addObserver(QueuePlayerObserver* observer, std::string_view keyPath,
                           unsigned options) = 0;
  virtual void removeObserver(QueuePlayerObserver* observer, std::string_view keyPath) = 0;
};

}  // namespace marlune

#endif  // MARLUNE_PLAYBACK_QUEUE_PLAYER_H_
