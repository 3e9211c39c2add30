#ifndef MARLUNE_TOOLS_MARLUNE_SPEAKING_PROGRESS_LINE_H_
#define MARLUNE_TOOLS_MARLUNE_SPEAKING_PROGRESS_LINE_H_

#include <string>

#include "tools/marlune/speaking/playlist.h"

namespace marlune::tool {

// The progress line "[####----] 1.2 of 3.4 s  kilometers", rewritten in place on standard error
// while a phrase plays. Shown only if standard error is a terminal; erased by the destructor.
class ProgressLine {
 public:
  explicit ProgressLine(const Playlist& playlist);
  ~ProgressLine();
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  // `seconds` is how much has been heard so far.
  void show(double seconds);

 private:
  const Playlist& _playlist;
  const bool _isShown;
};

// The text of the line.
std::string progressText(const Playlist& playlist, double seconds);

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_SPEAKING_PROGRESS_LINE_H_
