#ifndef MARLUNE_ANNOUNCE_ANNOUNCER_SETTINGS_H_
#define MARLUNE_ANNOUNCE_ANNOUNCER_SETTINGS_H_

#include <cstddef>

namespace marlune {

// How an announcer's announcements are played. Times are in seconds.
struct AnnouncerSettings {
  enum class RouteLost {
    pause,  // as if pause() had been called
    goOn,
  };

  // Silence before an announcement that follows another one.
  double pauseSeconds = 0.2;
  // Silence before one that is played when the output was idle, for outputs that swallow the
  // beginning.
  double leadInSeconds = 0;
  // How long other sound stays ducked after an announcement, for the next one.
  double holdSeconds = 0;

  // How long a lost output may take to come back before the announcement fails.
  double deviceWaitSeconds = 3;
  // How long the audio session stays active while an announcement is paused in its middle.
  double pausedSessionSeconds = 10;

  // The most announcements that may wait, the one that is queued ahead included.
  std::size_t longestQueue = 32;

  // What happens to the announcer's announcement when headphones are unplugged.
  RouteLost routeLost = RouteLost::pause;
};

}  // namespace marlune

#endif  // MARLUNE_ANNOUNCE_ANNOUNCER_SETTINGS_H_
