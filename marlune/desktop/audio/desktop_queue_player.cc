#include "marlune/desktop/audio/desktop_queue_player.h"

namespace marlune {

std::shared_ptr<DesktopQueuePlayer> DesktopQueuePlayer::overRoute(
    std::shared_ptr<AudioRoute> route) {
  std::shared_ptr<DesktopQueuePlayer> player(new DesktopQueuePlayer(std::move(route)));
  player->_engine->setOwner(player);
  return player;
}

bool DesktopQueuePlayer::canInsert(const PlayerItem* item, const PlayerItem* after) const {
  return _engine->canInsert(item, after);
}

void DesktopQueuePlayer::insert(std::shared_ptr<PlayerItem> item, const PlayerItem* after) {
  _engine->insert(std::move(item), after);
}

void DesktopQueuePlayer::addObserver(QueuePlayerObserver* observer, std::string_view keyPath,
                                     unsigned options) {
  _engine->addObserver(observer, keyPath, options);
}

void DesktopQueuePlayer::removeObserver(QueuePlayerObserver* observer, std::string_view keyPath) {
  _engine->removeObserver(observer, keyPath);
}

}  // namespace marlune
