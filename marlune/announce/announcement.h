#ifndef MARLUNE_ANNOUNCE_ANNOUNCEMENT_H_
#define MARLUNE_ANNOUNCE_ANNOUNCEMENT_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "marlune/announce/prepared_phrase.h"

namespace marlune {

// Identifies an announcement in this process. Never 0, never used again.
using AnnouncementId = std::uint64_t;

// A phrase to be said once, and when.
//
//     announcer->say({.words = {"pace", "5:30"}, .startWithin = 10, .key = "pace"});
struct Announcement {
  using Words = std::vector<std::string>;

  // What it does to the announcement that is playing, if that one has the same or a lower priority.
  enum class Takeover {
    wait,            // lets it finish
    afterRecording,  // ends it after the recording that is playing
    atOnce,          // ends it with a fade of 10 ms
  };

  // What to say: the first of these that is given.
  std::shared_ptr<const PreparedPhrase> prepared{};  // of Announcer::prepare
  std::function<Words()> wordsWhenDue{};             // called when its turn comes
  Words words{};

  // Other wordings, tried in order if the first cannot be said whole.
  std::vector<Words> alternatives{};

  // Higher ones go first. Among equal ones, those that take over go before those that wait.
  int priority = 0;
  Takeover takeover = Takeover::wait;

  // Seconds from say() until its first recording must be heard, or else it is dropped.
  std::optional<double> startWithin{};

  // Replaces the announcer's earlier announcement with this key that has not begun. "": replaces
  // none.
  std::string key{};

  // Asked when its turn comes; if it returns false, the announcement is dropped.
  std::function<bool()> isStillValid{};
};

}  // namespace marlune

#endif  // MARLUNE_ANNOUNCE_ANNOUNCEMENT_H_
