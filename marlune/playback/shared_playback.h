#ifndef MARLUNE_PLAYBACK_SHARED_PLAYBACK_H_
#define MARLUNE_PLAYBACK_SHARED_PLAYBACK_H_

#include <memory>
#include <mutex>
#include <string_view>

#include "marlune/playback/queue_player.h"
#include "marlune/util/tq_utils.h"

namespace marlune {

// What all players of the process share: the queue and the audio session. Internal: not installed.
//
// Threads: the main thread only, unless stated otherwise.
class SharedPlayback {
 public:
  // The one of the process, which is never destroyed, because a notification may arrive during
  // process exit. Tests replace it by a new one, on the thread that played, while no player exists.
  static std::unique_ptr<SharedPlayback>& ofProcess();

  SharedPlayback() = default;
  ~SharedPlayback() { __clearSharedPlayQueue(); }
  SharedPlayback(const SharedPlayback&) = delete;
  SharedPlayback& operator=(const SharedPlayback&) = delete;

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
  static bool onMainThread();

  // Logs a keyed line. Any thread.
  template <typename... Arguments>
  static void trace(std::string_view format, const Arguments&... arguments) {
    TQUtils::forDefaultLog(TQUtilsApplicationTraceDefault, format, arguments...);
  }

  void initialize();                                 // sets up the audio session at the first call
  std::shared_ptr<QueuePlayer> __sharedPlayQueue();  // nullptr if the platform has none
  bool isPlaying();
  static void _setAudioSessionActive(bool active);
  static void __deactivateAudioSession();

 private:
  class Observer;

  static void __initializeAudioSession();
  void __clearSharedPlayQueue();

  // On the main thread: the current item or the status of the queue `object` has changed. A late
  // notification from an earlier shared queue, or one without a queue (null), is ignored.
  void __nts_indicateEndOfQueuePlayback(const std::shared_ptr<QueuePlayer>& object);
  void __nts_queuePlayerStatusChanged(const std::shared_ptr<QueuePlayer>& object);

  std::once_flag _initialized;
  std::shared_ptr<QueuePlayer> _queue;
  bool _isAdding = false;
};

}  // namespace marlune

#endif  // MARLUNE_PLAYBACK_SHARED_PLAYBACK_H_
