#include "marlune/playback/player.h"

#include <utility>

#include "marlune/platform/platform.h"
#include "marlune/playback/shared_playback.h"
#include "marlune/util/tq_utils.h"

namespace marlune {
namespace {

constexpr double kDeactivationDelaySeconds = 0.5;

// Checks the thread for operations that apps call. Logs a line when it returns false.
bool isOnMainThread(std::string_view operation) {
  if (SharedPlayback::onMainThread()) return true;
  TQUtils::log("ERROR: %@ was called off the main thread and does nothing.", operation);
  return false;
}

}  // namespace

// The recordings of one player.
class Player::Implementation {
 public:
  Implementation(std::string directory, std::shared_ptr<const ResourceBundle> bundle)
      : _directory(std::move(directory)), _bundle(std::move(bundle)) {}

  void _addFileToQueue(const std::string& name);

 private:
  std::shared_ptr<PlayerItem> _playerItemForFileNamed(const std::string& name) const;

  const std::string _directory;
  const std::shared_ptr<const ResourceBundle> _bundle;
};

std::unique_ptr<Player> Player::initWithDirectory(std::string directory,
                                                  std::shared_ptr<const ResourceBundle> bundle) {
  return std::unique_ptr<Player>(new Player(std::move(directory), std::move(bundle)));
}

Player::Player(std::string directory, std::shared_ptr<const ResourceBundle> bundle)
    : _implementation(std::make_unique<Implementation>(std::move(directory), std::move(bundle))) {
  SharedPlayback::ofProcess().initialize();
}

Player::~Player() { stopAllSounds(); }

void Player::playSoundFilesInSequence(
    const std::shared_ptr<const std::vector<std::string>>& names) {
  if (!names && !isOnMainThread("playSoundFilesInSequence")) return;
  if (names) return playSoundFilesInSequence(*names);
  SharedPlayback::trace("%s - filenames:[%@]", "playSoundFilesInSequence", nullptr);
  TQUtils::log("No files given.");
}

void Player::playSoundFilesInSequence(const std::vector<std::string>& names) {
  if (!isOnMainThread("playSoundFilesInSequence")) return;
  SharedPlayback::trace("%s - filenames:[%@]", "playSoundFilesInSequence", names);
  // Adds all files before any sound starts, so that the queue can play them back to back.
  for (const auto& name : names) _implementation->_addFileToQueue(name);
  if (isPlaying()) return;  // the new files follow those being played
  const auto queue = SharedPlayback::ofProcess().__sharedPlayQueue();
  if (!queue) {
    TQUtils::log("ERROR: The platform has no queue player. Nothing can be played.");
    return;
  }
  SharedPlayback::trace("%s calling the play queue's play", "playSoundFilesInSequence");
  SharedPlayback::ofProcess()._setAudioSessionActive(true);
  queue->play();
}

void Player::stopAllSounds() {
  if (!isOnMainThread("stopAllSounds")) return;
  SharedPlayback::trace("%s", "stopAllSounds");
  if (!isPlaying()) return;
  const auto queue = SharedPlayback::ofProcess().__sharedPlayQueue();
  SharedPlayback::trace("%s setting the play queue's rate to 0", "stopAllSounds");
  queue->setRate(0);
  SharedPlayback::trace("%s removing all items from the play queue", "stopAllSounds");
  queue->removeAllItems();
  if (const auto mainThread = Platform::shared().mainThread) {
    mainThread->postAfter(kDeactivationDelaySeconds, &SharedPlayback::__deactivateAudioSession);
  } else {
    TQUtils::log("ERROR: The platform has no main thread. The audio session stays active.");
  }
}

bool Player::isPlaying() const {
  return isOnMainThread("isPlaying") && SharedPlayback::ofProcess().isPlaying();
}

std::shared_ptr<PlayerItem> Player::Implementation::_playerItemForFileNamed(
    const std::string& name) const {
  const auto path = _bundle ? _bundle->pathForResource(name, "aif", _directory) : std::nullopt;
  if (!path) {
    TQUtils::log("ERROR: Could not find \"%@.aif.\"", name);  // the message has the full stop
                                                              // inside the quotation marks
    return nullptr;
  }
  const auto& makePlayerItem = Platform::shared().makePlayerItem;
  return makePlayerItem ? makePlayerItem(*path) : nullptr;
}

void Player::Implementation::_addFileToQueue(const std::string& name) {
  SharedPlayback& playback = SharedPlayback::ofProcess();
  const SharedPlayback::Adding adding(playback);
  auto item = _playerItemForFileNamed(name);
  const auto queue = playback.__sharedPlayQueue();
  if (queue && queue->canInsert(item.get(), nullptr)) {
    SharedPlayback::trace("%s calling the play queue's insert after nil", "_addFileToQueue");
    queue->insert(std::move(item), nullptr);
  } else {
    // Logs the item, which shows what the queue refused: "(null)" for a missing file.
    TQUtils::log("ERROR: Could not append the player item for \"%@.aif\" to the play queue.", item);
  }
}

}  // namespace marlune
