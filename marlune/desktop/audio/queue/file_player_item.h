#ifndef MARLUNE_DESKTOP_AUDIO_QUEUE_FILE_PLAYER_ITEM_H_
#define MARLUNE_DESKTOP_AUDIO_QUEUE_FILE_PLAYER_ITEM_H_

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "marlune/desktop/audio/base/sound_cue.h"
#include "marlune/desktop/audio/recording/recording.h"
#include "marlune/playback/item_fate.h"
#include "marlune/playback/queue_player.h"

namespace marlune {

// An item of the desktop's queue. Threads: any.
class FilePlayerItem : public PlayerItem {
 public:
  // `recording`, if not null, is the file, already open and unread: the first queue that the item
  // enters then does not open the file again.
  explicit FilePlayerItem(std::string path, std::unique_ptr<Recording> recording = nullptr)
      : _path(std::move(path)), _recording(std::move(recording)) {}

  // An item that is silent for `seconds`, and has no file.
  static std::shared_ptr<FilePlayerItem> silence(double seconds) {
    auto item = std::make_shared<FilePlayerItem>(std::string());
    item->_silence = item->_seconds = seconds;
    return item;
  }

  const std::string& path() const override { return _path; }
  std::string description() const override { return _silence ? "a silence" : _path; }

  // The outcome for the item; for an item inserted several times, that of the last time. Not
  // pending once the item has left its queue.
  ItemFate fate() const override {
    const std::lock_guard lock(_mutex);
    return _fate;
  }
  // Known once the queue has opened the file.
  std::optional<double> seconds() const override {
    const std::lock_guard lock(_mutex);
    return _seconds;
  }

  // Whether it is in a queue.
  bool isQueued() const { return _isQueued.load(); }

  // For queues only. Null if there is no open recording, or it was taken before.
  std::unique_ptr<Recording> takeRecording() {
    const std::lock_guard lock(_mutex);
    return std::move(_recording);
  }
  void keepRecording(std::unique_ptr<Recording> recording) {
    const std::lock_guard lock(_mutex);
    _recording = std::move(recording);
  }
  const std::optional<double>& silence() const { return _silence; }
  void setSeconds(double seconds) {
    const std::lock_guard lock(_mutex);
    _seconds = seconds;
  }
  void enterQueue() {
    _setFate({});
    cue.reset();
    isEndedEarly = false;
    _isQueued.store(true);
  }
  void leaveQueue(ItemFate fate) {
    _setFate(std::move(fate));
    cue.reset();
    _isQueued.store(false);
  }

  // The queue's, guarded by its lock.
  std::shared_ptr<SoundCue> cue;  // of its current decoding; null before
  bool isEndedEarly = false;

 private:
  void _setFate(ItemFate fate) {
    const std::lock_guard lock(_mutex);
    _fate = std::move(fate);
  }

  const std::string _path;
  std::optional<double> _silence;  // its length; nothing for a file
  std::atomic<bool> _isQueued = false;
  mutable std::mutex _mutex;  // for all below
  std::unique_ptr<Recording> _recording;
  ItemFate _fate;
  std::optional<double> _seconds;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_QUEUE_FILE_PLAYER_ITEM_H_
