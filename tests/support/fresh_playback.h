#ifndef MARLUNE_TESTS_SUPPORT_FRESH_PLAYBACK_H_
#define MARLUNE_TESTS_SUPPORT_FRESH_PLAYBACK_H_

#include "marlune/playback/shared_playback.h"

namespace marlune {

// Returns what players share to its state at process start: no queue, the audio session not yet set
// up. Call it on the thread that played, while no player exists.
inline void startPlaybackAfresh() { SharedPlayback::ofProcess().startAfresh(); }

}  // namespace marlune

#endif  // MARLUNE_TESTS_SUPPORT_FRESH_PLAYBACK_H_
