#ifndef MARLUNE_ANNOUNCE_ANNOUNCEMENT_END_H_
#define MARLUNE_ANNOUNCE_ANNOUNCEMENT_END_H_

#include <optional>
#include <string>

#include "marlune/announce/phrase_problem.h"

namespace marlune {

// What became of an announcement. One that is taken over, cancelled or stopped when the output has
// already taken its last sound is heard whole and has finished.
struct AnnouncementEnd {
  enum class Kind {
    finished,       // heard whole
    interrupted,    // another one took over; a part was heard
    replaced,       // by a newer one with the same key, before it began
    expired,        // it could not begin in time
    noLongerValid,  // by its own check
    cancelled,      // by cancel() or cancelKey(); a part may have been heard
    unsayable,      // none of its wordings can be said; see `problem`
    failed,         // see `cause`
    stopped,        // by stop(), a player's stopAllSounds() or the end of its announcer
  };

  // Why it failed.
  enum class Cause {
    none,
    noDevice,             // there was no sound output when its turn came
    deviceLost,           // the output was lost while it played, and did not come back in time
    recordingUnreadable,  // a recording could not be played; the others were heard
    recordingTruncated,   // a recording was heard only as far as its file goes
    queueFull,            // too many announcements were waiting
  };

  Kind kind = Kind::finished;
  Cause cause = Cause::none;               // for failed
  std::string message{};                   // the cause for people; a sentence without a full stop
  std::optional<PhraseProblem> problem{};  // for unsayable: that of its first wording
};

}  // namespace marlune

#endif  // MARLUNE_ANNOUNCE_ANNOUNCEMENT_END_H_
