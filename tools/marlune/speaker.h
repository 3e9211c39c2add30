#ifndef MARLUNE_TOOLS_MARLUNE_SPEAKER_H_
#define MARLUNE_TOOLS_MARLUNE_SPEAKER_H_

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include "marlune/desktop/audio/file_output.h"
#include "marlune/desktop/services/run_loop.h"
#include "marlune/playback/player.h"
#include "tools/marlune/interruption.h"
#include "tools/marlune/last_words.h"
#include "tools/marlune/playlist.h"
#include "tools/marlune/queued_items.h"
#include "tools/marlune/watched_output.h"

namespace marlune::tool {

// Plays phrases, one after the other, on the sound device or into a file, and runs the main
// thread's loop meanwhile. One in a process.
class Speaker {
 public:
  // An empty `outputPath` is the sound device. Throws InputError when the path cannot be rendered
  // to, see requireUsableOutput. Opens nothing yet.
  Speaker(std::shared_ptr<const ResourceBundle> recordings, const std::string& outputPath);
  // Writes where the draft lies when a file was begun and not finished.
  ~Speaker();

  // Plays the recordings, and returns when the last one has been heard or written. Throws
  // PhraseError when one of them was not delivered to its last sample, be it that the sound device
  // was lost meanwhile. Throws InputError when the file cannot be written, or when there is no
  // sound device from the start. Ctrl-C silences it and ends the process.
  void say(const Words& files, Playlist& playlist);

  // Closes the output, and gives a file its name. Throws InputError when it turns out to have been
  // lost: what a file holds last is written only now.
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
  std::optional<LastWords> _lastWords;  // once a file has been begun
  QueuedItems _items;
  std::weak_ptr<QueuePlayer> _queue;  // the player's
  std::unique_ptr<Player> _player;
};

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_SPEAKER_H_
