#ifndef MARLUNE_PLAYBACK_PLAYER_H_
#define MARLUNE_PLAYBACK_PLAYER_H_

#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "marlune/platform/resource_bundle.h"
#include "marlune/platform/visibility.h"

namespace marlune {

// Plays recordings one after another without gaps. All players of the process share one queue, so
// their recordings never overlap: the later ones follow the earlier ones. The class also manages
// the process's audio session, which is set up once and active while there is sound, and replaces
// the queue when it fails.
//
// Failures are logged and swallowed. The queue, the items, the session and the main thread come
// from Platform::shared(), which must be filled before the first player is created.
//
// Threads: the main thread only; on any other thread an operation logs a line and does nothing. A
// child created by fork() has neither a main thread nor a sound thread: it may use parsers and
// decomposers of its own, but no player, and must end by exec or _exit.
class MARLUNE_API Player {
 public:
  // A player of the ".aif" resources in the sub-directory `directory` of `bundle`. The first player
  // of the process sets up the audio session. A null bundle has no resources.
  static std::unique_ptr<Player> initWithDirectory(std::string directory,
                                                   std::shared_ptr<const ResourceBundle> bundle);

  // Stops all sound, including that of other players.
  virtual ~Player();
  Player(const Player&) = delete;
  Player& operator=(const Player&) = delete;

  // Appends the recordings `names` (file names without extension) to the queue and starts playback
  // unless it is already running. A name without a file is skipped after a log line. nullptr
  // (nothing to say was found) logs a line and does nothing.
  void playSoundFilesInSequence(const std::shared_ptr<const std::vector<std::string>>& names);
  void playSoundFilesInSequence(const std::vector<std::string>& names);
  void playSoundFilesInSequence(std::initializer_list<std::string> names) {
    playSoundFilesInSequence(std::vector<std::string>(names));
  }

  // Stops the sound at once: empties the queue and releases the audio session half a second later.
  // Does nothing while not playing.
  void stopAllSounds();

  // Whether the shared queue runs at normal speed or faster. A lower rate counts as stopped. Off
  // the main thread, logs a line and returns false.
  bool isPlaying() const;

 protected:
  Player(std::string directory, std::shared_ptr<const ResourceBundle> bundle);

 private:
  class Implementation;

  const std::unique_ptr<Implementation> _implementation;
};

}  // namespace marlune

#endif  // MARLUNE_PLAYBACK_PLAYER_H_
