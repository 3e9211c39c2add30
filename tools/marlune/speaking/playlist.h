#ifndef MARLUNE_TOOLS_MARLUNE_SPEAKING_PLAYLIST_H_
#define MARLUNE_TOOLS_MARLUNE_SPEAKING_PLAYLIST_H_

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "marlune/desktop/audio/recording/recording.h"
#include "marlune/platform/resource_bundle.h"
#include "tools/marlune/input/phrase_input.h"

namespace marlune::tool {

struct PlaylistEntry {
  std::string name;  // of the recording, without extension
  double seconds = 0;
};

// The recordings to be played for a phrase. Each is opened once to check that it can be played; the
// first ones stay open, so that playing does not open them again.
class Playlist {
 public:
  // REQUIRES: the bundle contains every file.
  Playlist(const Words& files, const ResourceBundle& bundle);

  // The recordings that cannot be played, each with its cause; empty if all can.
  const std::string& faults() const { return _faults; }

  // The next recording in the order of the files, open, if it is the file at `path`. Null when it
  // is another or has been closed.
  std::unique_ptr<Recording> takeNext(const std::string& path);

  double seconds() const { return _seconds; }
  // The recording that is playing `seconds` after the start; nullptr at the end.
  const PlaylistEntry* entryAt(double seconds) const;

  // "five_kilometers 1.02, in 0.31: 1.33 s"
  std::string text() const;

 private:
  std::vector<PlaylistEntry> _entries;
  std::vector<std::pair<std::string, std::unique_ptr<Recording>>> _open;  // by path
  std::size_t _next = 0;
  std::string _faults;
  double _seconds = 0;
};

// Formats seconds with two decimals.
std::string secondsText(double seconds);

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_SPEAKING_PLAYLIST_H_
