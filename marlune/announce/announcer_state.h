#ifndef MARLUNE_ANNOUNCE_ANNOUNCER_STATE_H_
#define MARLUNE_ANNOUNCE_ANNOUNCER_STATE_H_

#include <memory>
#include <utility>

#include "marlune/announce/announcement_observer.h"
#include "marlune/announce/announcer.h"
#include "marlune/announce/announcer_settings.h"
#include "marlune/announce/phrase_preparer.h"

namespace marlune {

// What an announcer consists of. Its announcements share it, so that it outlives the announcer
// while they are in the line. Guarded by the lock of SharedSpeech. Internal: not installed.
class Announcer::State {
 public:
  explicit State(std::shared_ptr<PhrasePreparer> voice) : preparer(std::move(voice)) {}

  std::shared_ptr<PhrasePreparer> preparer;
  std::shared_ptr<const AnnouncementObserver> observer;  // null: none
  AnnouncerSettings settings;
};

}  // namespace marlune

#endif  // MARLUNE_ANNOUNCE_ANNOUNCER_STATE_H_
