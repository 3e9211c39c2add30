#ifndef MARLUNE_TESTS_SUPPORT_PLAYER_TEST_ACCESS_H_
#define MARLUNE_TESTS_SUPPORT_PLAYER_TEST_ACCESS_H_

#include "marlune/playback/player.h"

namespace marlune {

// Operations on the Player class that are reserved for tests.
class PlayerTestAccess {
 public:
  // Resets the class to its state at process start: no shared queue, the audio session not yet set
  // up. Call it on the thread that played, while no player exists.
  static void resetClass() { Player::_resetClass(); }
};

}  // namespace marlune

#endif  // MARLUNE_TESTS_SUPPORT_PLAYER_TEST_ACCESS_H_
