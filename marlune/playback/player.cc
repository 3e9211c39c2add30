#include "marlune/playback/player.h"

#include <cassert>
#include <cmath>
#include <functional>
#include <limits>
#include <mutex>
#include <optional>
#include <utility>

#include "marlune/platform/platform.h"
#include "marlune/playback/audio_session.h"
#include "marlune/util/tq_utils.h"

namespace marlune {
namespace {

constexpr double kDeactivationDelaySeconds = 0.5;
constexpr unsigned kCategoryOptions = AudioSession::kMixWithOthers | AudioSession::kDuckOthers;

// Without a main thread in the platform's table, every thread counts as one.
bool onMainThread() {
  const auto mainThread = Platform::shared().mainThread;
  return !mainThread || mainThread->isCurrent();
}

// Checks the thread for operations that apps call. Logs a line when it returns false.
bool isOnMainThread(std::string_view operation) {
  if (onMainThread()) return true;
  TQUtils::log("ERROR: %@ was called off the main thread and does nothing.", operation);
  return false;
}

void runOnMainThreadAndWait(const std::function<void()>& work) {
  const auto mainThread = Platform::shared().mainThread;
  if (mainThread) {
    mainThread->runAndWait(work);
  } else {
    work();
  }
}

void postToMainThread(std::function<void()> work) {
  const auto mainThread = Platform::shared().mainThread;
  if (mainThread) {
    mainThread->post(std::move(work));
  } else {
    work();
  }
}

AudioSession::Outcome noSession() { return {false, "The platform has no audio session."}; }

template <typename... Arguments>
void trace(std::string_view format, const Arguments&... arguments) {
  TQUtils::forDefaultLog(TQUtilsApplicationTraceDefault, format, arguments...);
}

// True while an item is inserted, however the insertion ends.
class RaisedFlag {
 public:
  explicit RaisedFlag(bool& flag) : _flag(flag) { _flag = true; }
  ~RaisedFlag() { _flag = false; }
  RaisedFlag(const RaisedFlag&) = delete;
  RaisedFlag& operator=(const RaisedFlag&) = delete;

 private:
  bool& _flag;
};

}  // namespace

// The observer is a single object without state, shared by all queues.
class Player::Observer : public QueuePlayerObserver {
 public:
  static Observer* shared() {
    static Observer* const observer = new Observer;
    return observer;
  }
  void observeValueForKeyPath(std::string_view keyPath,
                              const std::shared_ptr<QueuePlayer>& object) override {
    Player::observeValueForKeyPath(keyPath, object);
  }
};

struct Player::ClassState {
  std::once_flag initialized;
  std::shared_ptr<QueuePlayer> sharedPlayQueue;
  // Inserting into an empty queue changes its current item, but does not end playback.
  bool isAdding = false;
};

std::unique_ptr<Player::ClassState>& Player::_classState() {
  static auto* const state = new std::unique_ptr<ClassState>(std::make_unique<ClassState>());
  return *state;
}

void Player::_resetClass() {
  __clearSharedPlayQueue();
  _classState() = std::make_unique<ClassState>();
}

void Player::initialize() {
  std::call_once(_classState()->initialized, &Player::__initializeAudioSession);
}

void Player::__initializeAudioSession() {
  const auto session = Platform::shared().audioSession;
  const auto outcome = session
                           ? session->setCategory(AudioSession::kCategoryPlayback, kCategoryOptions)
                           : noSession();
  if (outcome.succeeded) return;
  TQUtils::log(
      "ERROR: Could not set the options %u (mix with others, duck others) and the category \"%@\" "
      "of the audio session. error: [%@]",
      kCategoryOptions, AudioSession::kCategoryPlayback, outcome.error);
}

void Player::_setAudioSessionActive(bool active) {
  const auto session = Platform::shared().audioSession;
  const auto outcome = session ? session->setActive(active) : noSession();
  if (outcome.succeeded && !outcome.error) return;
  TQUtils::log("ERROR: Could not set the audio session's active state to %d. error: [%@]", active,
               outcome.error);
}

void Player::__deactivateAudioSession() {
  trace("%s", "__deactivateAudioSession");
  _setAudioSessionActive(false);
}

std::shared_ptr<QueuePlayer> Player::__sharedPlayQueue() {
  ClassState& state = *_classState();
  if (state.sharedPlayQueue) return state.sharedPlayQueue;
  trace("%s creating a new queue player", "__sharedPlayQueue");
  const auto& makeQueuePlayer = Platform::shared().makeQueuePlayer;
  auto queue = makeQueuePlayer ? makeQueuePlayer() : nullptr;
  if (!queue) return nullptr;
  state.sharedPlayQueue = queue;
  queue->setAllowsExternalPlayback(false);
  queue->addObserver(Observer::shared(), QueuePlayer::kCurrentItemKeyPath, QueuePlayer::kNewValue);
  queue->addObserver(Observer::shared(), QueuePlayer::kStatusKeyPath,
                     QueuePlayer::kNewValue | QueuePlayer::kInitialValue);
  return queue;
}

void Player::__clearSharedPlayQueue() {
  const auto queue = std::exchange(_classState()->sharedPlayQueue, nullptr);
  if (!queue) return;
  queue->removeObserver(Observer::shared(), QueuePlayer::kCurrentItemKeyPath);
  queue->removeObserver(Observer::shared(), QueuePlayer::kStatusKeyPath);
}

// The rate is truncated to a whole number: 0.5 becomes 0 and counts as not playing.
bool Player::_isPlaying(const QueuePlayer& queue) {
  return std::fabs(std::trunc(queue.rate())) > std::numeric_limits<float>::epsilon();
}

void Player::observeValueForKeyPath(std::string_view keyPath,
                                    const std::shared_ptr<QueuePlayer>& object) {
  if (keyPath == QueuePlayer::kCurrentItemKeyPath) {
    runOnMainThreadAndWait([&object] { __nts_indicateEndOfQueuePlayback(object); });
  } else if (keyPath == QueuePlayer::kStatusKeyPath) {
    // A weak pointer: work waiting in the main thread's loop must not keep a dropped queue alive.
    postToMainThread([held = std::weak_ptr<QueuePlayer>(object)] {
      if (const auto queue = held.lock()) __nts_queuePlayerStatusChanged(queue);
    });
  }
}

void Player::__nts_indicateEndOfQueuePlayback(const std::shared_ptr<QueuePlayer>& object) {
  assert(onMainThread());
  const ClassState& state = *_classState();
  if (!object || object != state.sharedPlayQueue || state.isAdding) return;
  if (!object->items().empty()) return;  // one file ended and the next one began
  if (!_isPlaying(*object)) return;
  object->setRate(0);
  _setAudioSessionActive(false);
  // No items are left, so the count is a constant here.
  trace("%s setting rate to 0, items.count:[%lu]", "__nts_indicateEndOfQueuePlayback", 0UL);
}

void Player::__nts_queuePlayerStatusChanged(const std::shared_ptr<QueuePlayer>& object) {
  assert(onMainThread());
  if (!object || object != _classState()->sharedPlayQueue) return;
  if (object->status() != QueuePlayer::Status::failed) return;
  TQUtils::log(
      "%s detected that the media service died. Creating a new shared instance of the play queue.",
      "__nts_queuePlayerStatusChanged");
  __clearSharedPlayQueue();
  __initializeAudioSession();
  __sharedPlayQueue();
}

std::unique_ptr<Player> Player::initWithDirectory(std::string directory,
                                                  std::shared_ptr<const ResourceBundle> bundle) {
  return std::unique_ptr<Player>(new Player(std::move(directory), std::move(bundle)));
}

Player::Player(std::string directory, std::shared_ptr<const ResourceBundle> bundle)
    : _directory(std::move(directory)), _bundle(std::move(bundle)) {
  initialize();
}

Player::~Player() { stopAllSounds(); }

void Player::playSoundFilesInSequence(
    const std::shared_ptr<const std::vector<std::string>>& names) {
  if (!names && !isOnMainThread("playSoundFilesInSequence")) return;
  if (names) return playSoundFilesInSequence(*names);
  trace("%s - filenames:[%@]", "playSoundFilesInSequence", nullptr);
  TQUtils::log("No files given.");
}

void Player::playSoundFilesInSequence(const std::vector<std::string>& names) {
  if (!isOnMainThread("playSoundFilesInSequence")) return;
  trace("%s - filenames:[%@]", "playSoundFilesInSequence", names);
  // Adds all files before any sound starts, so that the queue can play them back to back.
  for (const auto& name : names) _addFileToQueue(name);
  if (isPlaying()) return;  // the new files follow those being played
  const auto queue = __sharedPlayQueue();
  if (!queue) {
    TQUtils::log("ERROR: The platform has no queue player. Nothing can be played.");
    return;
  }
  trace("%s calling the play queue's play", "playSoundFilesInSequence");
  _setAudioSessionActive(true);
  queue->play();
}

void Player::stopAllSounds() {
  if (!isOnMainThread("stopAllSounds")) return;
  trace("%s", "stopAllSounds");
  if (!isPlaying()) return;
  const auto queue = __sharedPlayQueue();
  trace("%s setting the play queue's rate to 0", "stopAllSounds");
  queue->setRate(0);
  trace("%s removing all items from the play queue", "stopAllSounds");
  queue->removeAllItems();
  if (const auto mainThread = Platform::shared().mainThread) {
    mainThread->postAfter(kDeactivationDelaySeconds, &Player::__deactivateAudioSession);
  } else {
    TQUtils::log("ERROR: The platform has no main thread. The audio session stays active.");
  }
}

bool Player::isPlaying() const {
  if (!isOnMainThread("isPlaying")) return false;
  const auto queue = __sharedPlayQueue();
  return queue && _isPlaying(*queue);
}

std::shared_ptr<PlayerItem> Player::_playerItemForFileNamed(const std::string& name) const {
  const auto path = _bundle ? _bundle->pathForResource(name, "aif", _directory) : std::nullopt;
  if (!path) {
    TQUtils::log("ERROR: Could not find \"%@.aif.\"", name);  // the message has the full stop
                                                              // inside the quotation marks
    return nullptr;
  }
  const auto& makePlayerItem = Platform::shared().makePlayerItem;
  return makePlayerItem ? makePlayerItem(*path) : nullptr;
}

void Player::_addFileToQueue(const std::string& name) {
  const RaisedFlag adding(_classState()->isAdding);
  auto item = _playerItemForFileNamed(name);
  const auto queue = __sharedPlayQueue();
  if (queue && queue->canInsert(item.get(), nullptr)) {
    trace("%s calling the play queue's insert after nil", "_addFileToQueue");
    queue->insert(std::move(item), nullptr);
  } else {
    // Logs the item, which shows what the queue refused: "(null)" for a missing file.
    TQUtils::log("ERROR: Could not append the player item for \"%@.aif\" to the play queue.", item);
  }
}

}  // namespace marlune
