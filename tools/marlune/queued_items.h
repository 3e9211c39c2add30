#ifndef MARLUNE_TOOLS_MARLUNE_QUEUED_ITEMS_H_
#define MARLUNE_TOOLS_MARLUNE_QUEUED_ITEMS_H_

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "marlune/desktop/audio/file_player_item.h"

namespace marlune::tool {

// The items that the player has made for one phrase, kept to find out what became of them.
class QueuedItems {
 public:
  // Lets the platform make its items through this. `takeRecording` gives the file at a path where
  // it is open already, else null. REQUIRES: this outlives the player.
  void install(std::function<std::unique_ptr<Recording>(const std::string& path)> takeRecording);

  void forget() { _items.clear(); }

  // Which of the phrase's `count` recordings were not delivered to their last sample, and why, as
  // a clause; empty when all were.
  std::string lossesAmong(std::size_t count) const;

 private:
  std::vector<std::shared_ptr<FilePlayerItem>> _items;
};

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_QUEUED_ITEMS_H_
