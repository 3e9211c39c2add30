#ifndef MARLUNE_PLAYBACK_SHARED_PLAYBACK_H_
#define MARLUNE_PLAYBACK_SHARED_PLAYBACK_H_

#include <atomic>
#include <cmath>
#include <limits>
#include <memory>
#include <string_view>

#include "marlune/platform/platform.h"
#include "marlune/platform/visibility.h"
#include "marlune/playback/audio_session.h"
#include "marlune/playback/queue_player.h"
#include "marlune/util/tq_utils.h"

namespace marlune {

// Is notified of the shared queue's progress, before the players react to it. Main thread.
class SharedPlaybackListener {
 public:
  virtual void currentItemChanged() = 0;
  virtual void queueReplaced() = 0;  // the queue has failed, and there is a new one

 protected:
  ~SharedPlaybackListener() = default;
};

// What all players of the process share: the queue and the audio session. Internal: not installed.
// What announcers call is virtual, so that a shared library exports one symbol only.
//
// Threads: the main thread only, unless stated otherwise.
class SharedPlayback {
 public:
  // The one of the process, which is never destroyed, because a notification may arrive during
  // process exit.
  MARLUNE_INTERNAL_API static SharedPlayback& ofProcess();

  SharedPlayback() = default;
  SharedPlayback(const SharedPlayback&) = delete;
  SharedPlayback& operator=(const SharedPlayback&) = delete;

  // Returns to the state at process start: no queue, the session not set up. For tests, on the
  // thread that played, while no player exists.
  virtual void startAfresh();

  // While one exists, a change of the queue's current item does not end playback: inserting into an
  // empty queue changes it, too.
  class Adding {
   public:
    explicit Adding(SharedPlayback& playback) : _playback(playback) { _playback._isAdding = true; }
    ~Adding() { _playback._isAdding = false; }
    Adding(const Adding&) = delete;
    Adding& operator=(const Adding&) = delete;

   private:
    SharedPlayback& _playback;
  };

  // Without a main thread in the platform's table, every thread counts as one. Any thread.
  static bool onMainThread() {
    const auto mainThread = Platform::shared().mainThread;
    return !mainThread || mainThread->isCurrent();
  }

  // Logs a keyed line. Any thread.
  template <typename... Arguments>
  static void trace(std::string_view format, const Arguments&... arguments) {
    TQUtils::forDefaultLog(TQUtilsApplicationTraceDefault, format, arguments...);
  }

  virtual void initialize();  // sets up the audio session at the first call
  virtual std::shared_ptr<QueuePlayer> __sharedPlayQueue();  // nullptr if the platform has none
  // The rate is truncated to a whole number: 0.5 becomes 0 and counts as not playing.
  static bool isPlayingOn(const QueuePlayer& queue) {
    return std::fabs(std::trunc(queue.rate())) > std::numeric_limits<float>::epsilon();
  }
  bool isPlaying();
  virtual void _setAudioSessionActive(bool active);
  static void __deactivateAudioSession();

  // At most one. Not owned.
  void setListener(SharedPlaybackListener* listener) { _listener = listener; }

 protected:
  ~SharedPlayback() = default;

 private:
  class Observer;

  static void __initializeAudioSession();
  void __clearSharedPlayQueue();

  // On the main thread: the current item or the status of the queue `object` has changed. A late
  // notification from an earlier shared queue, or one without a queue (null), is ignored.
  void __nts_indicateEndOfQueuePlayback(const std::shared_ptr<QueuePlayer>& object);
  void __nts_queuePlayerStatusChanged(const std::shared_ptr<QueuePlayer>& object);

  std::atomic<bool> _isInitialized = false;
  SharedPlaybackListener* _listener = nullptr;
  std::shared_ptr<QueuePlayer> _queue;
  bool _isAdding = false;
};

}  // namespace marlune

#endif  // MARLUNE_PLAYBACK_SHARED_PLAYBACK_H_
