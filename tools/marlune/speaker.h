#ifndef MARLUNE_TOOLS_MARLUNE_SPEAKER_H_
#define MARLUNE_TOOLS_MARLUNE_SPEAKER_H_

#include <memory>
#include <string>

#include "marlune/desktop/services/run_loop.h"
#include "marlune/playback/player.h"
#include "tools/marlune/interruption.h"
#include "tools/marlune/playlist.h"
#include "tools/marlune/watched_output.h"

namespace marlune::tool {

// Plays phrases, one after the other, on the sound device or into a file, and runs the main
// thread's loop meanwhile. One in a process.
class Speaker {
 public:
  // An empty `outputPath` is the sound device. Throws InputError when the path's extension is
  // neither .wav nor .aif or its folder is not there to write to. Opens nothing yet.
  Speaker(std::shared_ptr<const ResourceBundle> recordings, const std::string& outputPath);

  // Plays the recordings, and returns when the last one has been heard or written. Throws
  // InputError when the output cannot be opened or is lost. Ctrl-C silences it and ends the
  // process.
  void say(const Words& files, const Playlist& playlist);

  // Closes the output. Throws InputError when it turns out to have been lost: what a file holds
  // last is written only now.
  void finish();

 private:
  void _runUntilHeard(const Playlist& playlist, const Interruption& interruption);
  void _silence();
  void _throwFailure() const;

  const std::shared_ptr<RunLoop> _loop = std::make_shared<RunLoop>();
  std::shared_ptr<WatchedOutput> _output;
  std::unique_ptr<Player> _player;
};

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_SPEAKER_H_
