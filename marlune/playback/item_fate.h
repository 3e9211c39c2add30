#ifndef MARLUNE_PLAYBACK_ITEM_FATE_H_
#define MARLUNE_PLAYBACK_ITEM_FATE_H_

#include <cstdint>
#include <string>
#include <utility>

namespace marlune {

// The outcome for an item of a queue.
struct ItemFate {
  enum class Kind {
    pending,     // in a queue, or not inserted yet
    heardWhole,  // played to its last sample
    cutShort,    // the file is truncated: played as far as it goes
    leftOut,     // could not be decoded: nothing was played
    dropped,     // removed from its queue: nothing or only a part was played
  };

  static ItemFate heard(std::uint64_t missingFrames) {
    if (missingFrames == 0) return {Kind::heardWhole, {}, 0};
    return {Kind::cutShort,
            "the file is truncated: " + std::to_string(missingFrames) + " frames are missing",
            missingFrames};
  }
  static ItemFate leftOut(std::string cause) { return {Kind::leftOut, std::move(cause), 0}; }
  static ItemFate dropped(std::string cause) { return {Kind::dropped, std::move(cause), 0}; }

  Kind kind = Kind::pending;
  std::string message{};            // the cause, as a clause; empty for pending and heardWhole
  std::uint64_t missingFrames = 0;  // for cutShort, at the recording's own rate

  bool operator==(const ItemFate&) const = default;
};

}  // namespace marlune

#endif  // MARLUNE_PLAYBACK_ITEM_FATE_H_
