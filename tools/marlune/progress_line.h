#ifndef MARLUNE_TOOLS_MARLUNE_PROGRESS_LINE_H_
#define MARLUNE_TOOLS_MARLUNE_PROGRESS_LINE_H_

#include <string>

#include "tools/marlune/playlist.h"

namespace marlune::tool {

// The line that moves while a phrase is heard, "[####----] 1.2 of 3.4 s  kilometers", written
// over itself on standard error when that is a terminal and nowhere else. Gone when it ends.
class ProgressLine {
 public:
  explicit ProgressLine(const Playlist& playlist);
  ~ProgressLine();
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  // What has been heard so far, in seconds.
  void show(double seconds);

 private:
  const Playlist& _playlist;
  const bool _isShown;
};

// The line's text.
std::string progressText(const Playlist& playlist, double seconds);

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_PROGRESS_LINE_H_
