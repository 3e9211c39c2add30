#ifndef MARLUNE_DESKTOP_AUDIO_FILE_PLAYER_ITEM_H_
#define MARLUNE_DESKTOP_AUDIO_FILE_PLAYER_ITEM_H_

#include <atomic>
#include <string>
#include <utility>

#include "marlune/playback/queue_player.h"

namespace marlune {

// An item of the desktop's queue.
class FilePlayerItem : public PlayerItem {
 public:
  explicit FilePlayerItem(std::string path) : _path(std::move(path)) {}

  const std::string& path() const override { return _path; }
  std::string description() const override { return _path; }

  // Whether some queue holds it. Kept by the queues.
  bool isQueued() const { return _isQueued.load(); }
  void setQueued(bool isQueued) { _isQueued.store(isQueued); }

 private:
  const std::string _path;
  std::atomic<bool> _isQueued = false;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_FILE_PLAYER_ITEM_H_
