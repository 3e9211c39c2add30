#ifndef MARLUNE_TOOLS_MARLUNE_SPEAKING_QUEUED_ITEMS_H_
#define MARLUNE_TOOLS_MARLUNE_SPEAKING_QUEUED_ITEMS_H_

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "marlune/desktop/audio/queue/file_player_item.h"

namespace marlune::tool {

// Keeps the items that the player makes for one phrase, to check whether each was played.
class QueuedItems {
 public:
  // Installs itself as the platform's factory of player items. `takeRecording` returns the
  // recording at a path if it is already open, else null. REQUIRES: this outlives the player.
  void install(std::function<std::unique_ptr<Recording>(const std::string& path)> takeRecording);

  void forget() { _items.clear(); }

  // Which of the phrase's `count` recordings were not delivered to their last sample, and why, as a
  // clause; empty if all were.
  std::string lossesAmong(std::size_t count) const;

 private:
  std::vector<std::shared_ptr<FilePlayerItem>> _items;
};

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_SPEAKING_QUEUED_ITEMS_H_
