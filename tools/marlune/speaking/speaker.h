#ifndef MARLUNE_TOOLS_MARLUNE_SPEAKING_SPEAKER_H_
#define MARLUNE_TOOLS_MARLUNE_SPEAKING_SPEAKER_H_

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include "marlune/desktop/audio/output/file_output.h"
#include "marlune/desktop/services/folder_bundle.h"
#include "marlune/desktop/services/run_loop.h"
#include "marlune/playback/player.h"
#include "tools/marlune/speaking/interruption.h"
#include "tools/marlune/speaking/last_words.h"
#include "tools/marlune/speaking/playlist.h"
#include "tools/marlune/speaking/queued_items.h"
#include "tools/marlune/speaking/watched_output.h"

namespace marlune::tool {

// Plays phrases one after another, on the sound device or into a file, and runs the main thread's
// loop while they play. At most one per process.
class Speaker {
 public:
  // An empty `outputPath` means the sound device. Throws InputError if the path is not a usable
  // output (see requireUsableOutput). Does not open the output.
  Speaker(std::shared_ptr<const FolderBundle> recordings, const std::string& outputPath);
  // Prints the path of the draft if a file was started but not finished.
  ~Speaker();

  // Plays the recordings and returns when the last one has been heard or written. Throws
  // PhraseError if one of them was not delivered to its last sample, for example because the sound
  // device was lost. Throws InputError if the file cannot be written, or if no sound device could
  // ever be opened. Ctrl-C stops the sound and ends the process.
  void say(const Words& files, Playlist& playlist);

  // Closes the output and renames the draft to the file. The last of the sound is written only
  // here; throws InputError if that or any earlier write failed.
  void finish();

 private:
  void _runUntilHeard(const Playlist& playlist, const Interruption& interruption);
  void _awaitNewQueue(const Interruption& interruption);
  void _silence();
  void _throwLosses(std::size_t recordings);

  Playlist* _queued = nullptr;  // while its recordings are put into the queue
  const std::shared_ptr<RunLoop> _loop = std::make_shared<RunLoop>();
  std::shared_ptr<FileOutput> _file;  // null for the sound device
  std::shared_ptr<WatchedOutput> _output;
  std::optional<LastWords> _lastWords;  // from the first phrase rendered to a file
  QueuedItems _items;
  std::weak_ptr<QueuePlayer> _queue;  // the player's
  std::unique_ptr<Player> _player;
};

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_SPEAKING_SPEAKER_H_
