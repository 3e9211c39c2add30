#include "marlune/playback/shared_playback.h"

#include <cassert>
#include <functional>
#include <utility>

#include "marlune/platform/platform.h"
#include "marlune/util/tq_utils.h"

namespace marlune {

namespace {

constexpr unsigned kCategoryOptions = AudioSession::kMixWithOthers | AudioSession::kDuckOthers;

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

}  // namespace

// Called on any thread; forwards to the main thread. A single object without state, shared by all
// queues.
class SharedPlayback::Observer : public QueuePlayerObserver {
 public:
  static Observer* shared() {
    static Observer* const observer = new Observer;
    return observer;
  }

  void observeValueForKeyPath(std::string_view keyPath,
                              const std::shared_ptr<QueuePlayer>& object) override {
    if (keyPath == QueuePlayer::kCurrentItemKeyPath) {
      runOnMainThreadAndWait([&object] { ofProcess().__nts_indicateEndOfQueuePlayback(object); });
    } else if (keyPath == QueuePlayer::kStatusKeyPath) {
      // A weak pointer: work waiting in the main thread's loop must not keep a dropped queue alive.
      postToMainThread([held = std::weak_ptr<QueuePlayer>(object)] {
        if (const auto queue = held.lock()) ofProcess().__nts_queuePlayerStatusChanged(queue);
      });
    }
  }
};

SharedPlayback& SharedPlayback::ofProcess() {
  static auto* const playback = new SharedPlayback;
  return *playback;
}

void SharedPlayback::startAfresh() {
  __clearSharedPlayQueue();
  _isInitialized.store(false);
}

void SharedPlayback::initialize() {
  if (!_isInitialized.exchange(true)) __initializeAudioSession();
}

void SharedPlayback::__initializeAudioSession() {
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

void SharedPlayback::_setAudioSessionActive(bool active) {
  const auto session = Platform::shared().audioSession;
  const auto outcome = session ? session->setActive(active) : noSession();
  if (outcome.succeeded && !outcome.error) return;
  TQUtils::log("ERROR: Could not set the audio session's active state to %d. error: [%@]", active,
               outcome.error);
}

void SharedPlayback::__deactivateAudioSession() {
  trace("%s", "__deactivateAudioSession");
  ofProcess()._setAudioSessionActive(false);
}

std::shared_ptr<QueuePlayer> SharedPlayback::__sharedPlayQueue() {
  if (_queue) return _queue;
  trace("%s creating a new queue player", "__sharedPlayQueue");
  const auto& makeQueuePlayer = Platform::shared().makeQueuePlayer;
  auto queue = makeQueuePlayer ? makeQueuePlayer() : nullptr;
  if (!queue) return nullptr;
  _queue = queue;
  queue->setAllowsExternalPlayback(false);
  queue->addObserver(Observer::shared(), QueuePlayer::kCurrentItemKeyPath, QueuePlayer::kNewValue);
  queue->addObserver(Observer::shared(), QueuePlayer::kStatusKeyPath,
                     QueuePlayer::kNewValue | QueuePlayer::kInitialValue);
  return queue;
}

void SharedPlayback::__clearSharedPlayQueue() {
  const auto queue = std::exchange(_queue, nullptr);
  if (!queue) return;
  queue->removeObserver(Observer::shared(), QueuePlayer::kCurrentItemKeyPath);
  queue->removeObserver(Observer::shared(), QueuePlayer::kStatusKeyPath);
}

bool SharedPlayback::isPlaying() {
  const auto queue = __sharedPlayQueue();
  return queue && isPlayingOn(*queue);
}

void SharedPlayback::__nts_indicateEndOfQueuePlayback(const std::shared_ptr<QueuePlayer>& object) {
  assert(onMainThread());
  if (!object || object != _queue || _isAdding) return;
  if (_listener) _listener->currentItemChanged();
  if (!object->items().empty()) return;  // one file ended and the next one began
  if (!isPlayingOn(*object)) return;
  object->setRate(0);
  _setAudioSessionActive(false);
  // No items are left, so the count is a constant here.
  trace("%s setting rate to 0, items.count:[%lu]", "__nts_indicateEndOfQueuePlayback", 0UL);
}

void SharedPlayback::__nts_queuePlayerStatusChanged(const std::shared_ptr<QueuePlayer>& object) {
  assert(onMainThread());
  if (!object || object != _queue) return;
  if (object->status() != QueuePlayer::Status::failed) return;
  TQUtils::log(
      "%s detected that the media service died. Creating a new shared instance of the play queue.",
      "__nts_queuePlayerStatusChanged");
  __clearSharedPlayQueue();
  __initializeAudioSession();
  __sharedPlayQueue();
  if (_listener) _listener->queueReplaced();
}

}  // namespace marlune
