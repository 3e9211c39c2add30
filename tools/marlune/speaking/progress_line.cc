#include "tools/marlune/speaking/progress_line.h"

#include <unistd.h>

#include <algorithm>
#include <iostream>

#include "tools/marlune/text/shown_text.h"

namespace marlune::tool {

ProgressLine::ProgressLine(const Playlist& playlist)
    : _playlist(playlist), _isShown(isatty(STDERR_FILENO) == 1) {}

ProgressLine::~ProgressLine() {
  if (_isShown) std::cerr << "\r\033[K" << std::flush;
}

void ProgressLine::show(double seconds) {
  if (_isShown) std::cerr << "\r" + progressText(_playlist, seconds) + "\033[K" << std::flush;
}

std::string progressText(const Playlist& playlist, double seconds) {
  constexpr int kBarLength = 30;
  const double total = playlist.seconds();
  const double heard = std::clamp(seconds, 0.0, total);
  const int bars = total > 0 ? static_cast<int>(kBarLength * heard / total) : kBarLength;
  std::string text = "[" + std::string(static_cast<std::size_t>(bars), '#') +
                     std::string(static_cast<std::size_t>(kBarLength - bars), '-') + "] ";
  text += secondsText(heard) + " of " + secondsText(total) + " s";
  const PlaylistEntry* entry = playlist.entryAt(heard);
  return entry ? text + "  " + shown(entry->name) : text;
}

}  // namespace marlune::tool
