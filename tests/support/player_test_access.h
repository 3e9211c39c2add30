#ifndef MARLUNE_TESTS_SUPPORT_PLAYER_TEST_ACCESS_H_
#define MARLUNE_TESTS_SUPPORT_PLAYER_TEST_ACCESS_H_

#include "marlune/playback/player.h"

namespace marlune {

// What tests may do to the Player class that nobody else may.
class PlayerTestAccess {
 public:
  // Puts the class back to how a process starts: no shared queue, the audio session not yet set
  // up. On the thread that played, with no player alive.
  static void resetClass() { Player::_resetClass(); }
};

}  // namespace marlune

#endif  // MARLUNE_TESTS_SUPPORT_PLAYER_TEST_ACCESS_H_
