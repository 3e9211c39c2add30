#include "tools/marlune/speaking/playlist.h"

#include <array>
#include <cstdio>

namespace marlune::tool {

namespace {
constexpr std::size_t kMostOpen = 64;  // each takes a descriptor
}  // namespace

Playlist::Playlist(const Words& files, const ResourceBundle& bundle) {
  for (const std::string& name : files) {
    std::string path = bundle.pathForResource(name, "aif", "").value_or(name);
    auto opened = Recording::open(path);
    if (opened.succeeded()) {
      std::unique_ptr<Recording> recording = std::move(opened.value());
      _entries.push_back({name, recording->seconds()});
      _seconds += recording->seconds();
      if (_open.size() < kMostOpen) _open.emplace_back(std::move(path), std::move(recording));
    } else {
      _faults.append(_faults.empty() ? "" : "; ").append(name);
      _faults.append(".aif cannot be played: ").append(opened.failure().message);
    }
  }
}

std::unique_ptr<Recording> Playlist::takeNext(const std::string& path) {
  if (_next == _open.size() || _open[_next].first != path) return nullptr;
  return std::move(_open[_next++].second);
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
