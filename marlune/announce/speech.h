#ifndef MARLUNE_ANNOUNCE_SPEECH_H_
#define MARLUNE_ANNOUNCE_SPEECH_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "marlune/announce/announcement.h"
#include "marlune/announce/announcement_end.h"
#include "marlune/announce/announcer_state.h"
#include "marlune/playback/queue_player.h"

namespace marlune {

// An announcement from say() to its end. Internal: not installed.
struct Speech {
  AnnouncementId id = 0;
  std::shared_ptr<Announcer::State> announcer;
  Announcement content;
  std::optional<double> deadline;  // by which its first recording must be heard
  std::int64_t rank = 0;           // its place among those of its priority; lower ones go first
  AnnouncementId takesOver = 0;    // the announcement that it is to end; 0: none
  std::optional<AnnouncementEnd::Kind> wish;  // how a call has ended it, to be carried out
  bool isEnded = false;                       // its end was reported while its functions ran

  // While it is in the queue.
  std::shared_ptr<const PreparedPhrase> phrase;
  std::shared_ptr<PlayerItem> silence;  // before it; null: none
  std::vector<std::shared_ptr<PlayerItem>> items;
  std::vector<std::size_t> recordings;  // for each item, its recording's index in the phrase
  double start = 0;                     // when its first recording was expected to be heard
  std::size_t left = 0;                 // items that have left the queue
  std::size_t reported = 0;             // items reported since it entered the queue
  bool hasStarted = false;              // reported; stays when the phrase starts again
  bool isCut = false;                   // recordings at its end were removed
  bool isDropped = false;               // a player's stopAllSounds() has removed recordings
  int restarts = 0;                     // after a lost output
  AnnouncementEnd::Cause fault = AnnouncementEnd::Cause::none;
  std::string faultMessage;

  // Whether it goes before `other`.
  bool isBefore(const Speech& other) const {
    if (content.priority != other.content.priority) {
      return content.priority > other.content.priority;
    }
    return rank < other.rank;
  }

  std::span<const std::shared_ptr<PlayerItem>> itemsFrom(std::size_t index) const {
    return std::span(items).subspan(index);
  }

  // Forgets its items, so that it can enter a queue again.
  void leaveQueue() {
    silence.reset();
    items.clear();
    recordings.clear();
    left = reported = 0;
    isCut = isDropped = false;
    fault = AnnouncementEnd::Cause::none;
  }

  // Becomes one that was not said yet. Keeps its memory.
  void clear() {
    leaveQueue();
    id = takesOver = 0;
    announcer.reset();
    content = {};
    deadline.reset();
    wish.reset();
    phrase.reset();
    isEnded = hasStarted = false;
    restarts = 0;
  }
};

}  // namespace marlune

#endif  // MARLUNE_ANNOUNCE_SPEECH_H_
