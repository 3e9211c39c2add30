#ifndef MARLUNE_ANNOUNCE_ANNOUNCEMENT_OBSERVER_H_
#define MARLUNE_ANNOUNCE_ANNOUNCEMENT_OBSERVER_H_

#include <functional>

#include "marlune/announce/announcement.h"
#include "marlune/announce/announcement_end.h"
#include "marlune/announce/prepared_phrase.h"

namespace marlune {

// What an app learns of its announcements. A missing function is not called.
//
// Threads: called on the main thread, with no lock held; the functions may call the announcer. They
// must not throw.
struct AnnouncementObserver {
  // Its first recording begins. Not called again if the phrase starts again after a lost device.
  std::function<void(AnnouncementId id)> started{};

  // A recording begins, the first one included.
  std::function<void(AnnouncementId id, const SpokenRecording& recording)> recording{};

  // The announcement has ended. Called exactly once for each id that say() returned.
  std::function<void(AnnouncementId id, const AnnouncementEnd& end)> ended{};
};

}  // namespace marlune

#endif  // MARLUNE_ANNOUNCE_ANNOUNCEMENT_OBSERVER_H_
