#ifndef MARLUNE_PLAYBACK_PLAYER_H_
#define MARLUNE_PLAYBACK_PLAYER_H_

#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "marlune/platform/resource_bundle.h"
#include "marlune/playback/queue_player.h"

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
class Player {
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
  friend class PlayerTestAccess;
  class Observer;
  struct ClassState;

  // State of the process. It is never destroyed, because a notification may arrive during process
  // exit.
  static std::unique_ptr<ClassState>& _classState();
  static void _resetClass();  // back to the state at process start; for tests
  static void initialize();   // once, when the class is first used
  static void __initializeAudioSession();
  static void _setAudioSessionActive(bool active);
  static void __deactivateAudioSession();
  static std::shared_ptr<QueuePlayer> __sharedPlayQueue();  // nullptr if the platform has none
  static void __clearSharedPlayQueue();
  static bool _isPlaying(const QueuePlayer& queue);

  // Called on any thread. Forwards to the main thread.
  static void observeValueForKeyPath(std::string_view keyPath,
                                     const std::shared_ptr<QueuePlayer>& object);
  // On the main thread: the current item or the status of the queue `object` has changed. A late
  // notification from an earlier shared queue, or one without a queue (null), is ignored.
  static void __nts_indicateEndOfQueuePlayback(const std::shared_ptr<QueuePlayer>& object);
  static void __nts_queuePlayerStatusChanged(const std::shared_ptr<QueuePlayer>& object);

  std::shared_ptr<PlayerItem> _playerItemForFileNamed(const std::string& name) const;
  void _addFileToQueue(const std::string& name);

  std::string _directory;
  std::shared_ptr<const ResourceBundle> _bundle;
};

}  // namespace marlune

#endif  // MARLUNE_PLAYBACK_PLAYER_H_
