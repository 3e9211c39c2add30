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

// Plays recordings one after another without gaps. All players of the process feed one queue, so
// what they are asked to say never sounds at the same time: the later follows the earlier. The
// class also looks after the process's audio session (set up once, active while there is sound)
// and makes a new queue when the one it has dies.
//
// What goes wrong is logged and swallowed. The queue, the items, the session and the main thread
// are those of Platform::shared(), which must be filled before the first player.
//
// Threads: the main thread only; elsewhere an operation logs a line and does nothing. A child that
// fork() made has no main thread and no worker of sound: it may use parsers and decomposers of its
// own, and no player; it ends by exec or _exit.
class Player {
 public:
  // A player of the ".aif" resources in the sub-directory `directory` of `bundle`. The very first
  // one sets the audio session up. A null bundle holds no resource.
  static std::unique_ptr<Player> initWithDirectory(std::string directory,
                                                   std::shared_ptr<const ResourceBundle> bundle);

  // Stops all sound, that of other players too.
  virtual ~Player();
  Player(const Player&) = delete;
  Player& operator=(const Player&) = delete;

  // Appends the recordings `names` (file names without extension) behind whatever is queued, and
  // starts to play unless that is under way. A name without a file is left out, with a line in
  // the log. nullptr (nothing could be found to say) logs a line and does nothing.
  void playSoundFilesInSequence(const std::shared_ptr<const std::vector<std::string>>& names);
  void playSoundFilesInSequence(const std::vector<std::string>& names);
  void playSoundFilesInSequence(std::initializer_list<std::string> names) {
    playSoundFilesInSequence(std::vector<std::string>(names));
  }

  // Silence at once: empties the queue and, half a second later, releases the audio session. Does
  // nothing while not playing.
  void stopAllSounds();

  // Whether the shared queue runs at normal speed or faster. A slower one counts as stopped. False,
  // with a line, off the main thread.
  bool isPlaying() const;

 protected:
  Player(std::string directory, std::shared_ptr<const ResourceBundle> bundle);

 private:
  friend class PlayerTestAccess;
  class Observer;
  struct ClassState;

  // Process-wide. It is never destroyed: a notification may arrive while the process ends.
  static std::unique_ptr<ClassState>& _classState();
  static void _resetClass();  // as when the process starts; for tests
  static void initialize();   // once, when the class is first used
  static void __initializeAudioSession();
  static void _setAudioSessionActive(bool active);
  static void __deactivateAudioSession();
  static std::shared_ptr<QueuePlayer> __sharedPlayQueue();  // nullptr: the platform has none
  static void __clearSharedPlayQueue();
  static bool _isPlaying(const QueuePlayer& queue);

  // Called on any thread; forwards to the main thread.
  static void observeValueForKeyPath(std::string_view keyPath,
                                     const std::shared_ptr<QueuePlayer>& object);
  // On the main thread: the queue `object` has another current item, another status. A late notice
  // of an earlier shared queue, or of none (null), is ignored.
  static void __nts_indicateEndOfQueuePlayback(const std::shared_ptr<QueuePlayer>& object);
  static void __nts_queuePlayerStatusChanged(const std::shared_ptr<QueuePlayer>& object);

  std::shared_ptr<PlayerItem> _playerItemForFileNamed(const std::string& name) const;
  void _addFileToQueue(const std::string& name);

  std::string _directory;
  std::shared_ptr<const ResourceBundle> _bundle;
};

}  // namespace marlune

#endif  // MARLUNE_PLAYBACK_PLAYER_H_
