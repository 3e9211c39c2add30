#include "tools/marlune/playlist.h"

#include <array>
#include <cstdio>

#include "marlune/desktop/audio/recording.h"

namespace marlune::tool {

Playlist::Playlist(const Words& files, const ResourceBundle& bundle) {
  for (const std::string& name : files) {
    std::string cause;
    const auto recording =
        Recording::open(bundle.pathForResource(name, "aif", "").value_or(name), cause);
    if (recording) {
      _entries.push_back({name, recording->seconds()});
      _seconds += recording->seconds();
    } else {
      _faults.append(_faults.empty() ? "" : "; ").append(name);
      _faults.append(".aif cannot be played: ").append(cause);
    }
  }
}

const PlaylistEntry* Playlist::entryAt(double seconds) const {
  for (const PlaylistEntry& entry : _entries) {
    if (seconds < entry.seconds) return &entry;
    seconds -= entry.seconds;
  }
  return nullptr;
}

std::string Playlist::text() const {
  std::string text;
  for (const PlaylistEntry& entry : _entries) {
    if (!text.empty()) text += ", ";
    text += entry.name + " " + secondsText(entry.seconds);
  }
  return text + ": " + secondsText(_seconds) + " s";
}

std::string secondsText(double seconds) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.2f", seconds);
  return text.data();
}

}  // namespace marlune::tool
