#ifndef MARLUNE_DESKTOP_AUDIO_QUEUE_QUEUE_ENGINE_H_
#define MARLUNE_DESKTOP_AUDIO_QUEUE_QUEUE_ENGINE_H_

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "marlune/desktop/audio/output/audio_route.h"
#include "marlune/desktop/audio/queue/change_notifier.h"
#include "marlune/desktop/audio/queue/file_player_item.h"
#include "marlune/desktop/audio/queue/render_line.h"
#include "marlune/desktop/audio/recording/clip_decoder.h"
#include "marlune/platform/failure.h"
#include "marlune/playback/queue_player.h"

namespace marlune {

// The implementation of DesktopQueuePlayer, separate because the engine's threads can outlive the
// player. Holds the items and a worker that decodes ahead of the output, ends items that were heard
// and checks the output.
//
// Four threads are involved. The main thread controls the engine; it shares with the worker only
// what the lock guards. The worker never waits for the main thread's loop. The notifier thread may,
// which is why observers are called there. The output's callback (render) shares only the
// RenderLine with the worker. No lock is held during calls to observers or to the route.
class QueueEngine : public RouteUser, public std::enable_shared_from_this<QueueEngine> {
 public:
  explicit QueueEngine(std::shared_ptr<AudioRoute> route) : _route(std::move(route)) {}
  ~QueueEngine() override = default;

  // The control side; see QueuePlayer.
  void setOwner(std::weak_ptr<QueuePlayer> owner) { _notifier->setOwner(std::move(owner)); }
  bool canInsert(const PlayerItem* item, const PlayerItem* after) const;
  void insert(std::shared_ptr<PlayerItem> item, const PlayerItem* after);
  float rate() const;
  void setRate(float rate);
  void removeAllItems();
  std::vector<std::shared_ptr<PlayerItem>> items() const;
  std::shared_ptr<PlayerItem> currentItem() const;
  bool removeUnbegun(std::span<const std::shared_ptr<PlayerItem>> items);
  bool endEarly(const PlayerItem* item, double fadeSeconds);
  std::optional<double> secondsHeard() const;
  double latencySeconds() const;
  float volume() const { return _volume.load(); }
  void setVolume(float volume);
  QueuePlayer::Status status() const;
  void addObserver(QueuePlayerObserver* observer, std::string_view keyPath, unsigned options) {
    _notifier->addObserver(observer, keyPath, options);
  }
  void removeObserver(QueuePlayerObserver* observer, std::string_view keyPath) {
    _notifier->removeObserver(observer, keyPath);
  }
  void waitUntilSettled();

  // Ends everything; call nothing afterwards. Any thread, including the worker and the notifier.
  void stop();

  bool isSounding() const override;
  std::size_t render(float* frames, std::size_t count, int channels) noexcept override {
    return _line.render(frames, count, channels, _route->opening());
  }
  std::size_t renderShorts(short* frames, std::size_t count, int channels) noexcept override {
    return _line.renderShorts(frames, count, channels, _route->opening());
  }
  void rendered() override;

 private:
  using Lock = std::unique_lock<std::mutex>;
  using Clock = std::chrono::steady_clock;

  // A recording whose last frame has been taken.
  struct Ending {
    std::uint32_t generation;
    std::uint64_t serial;
    std::uint64_t takenAt;  // in frames taken by the output
    std::uint64_t opening;  // of the output that took the frame
    std::uint64_t missingFrames;
  };

  void _openForFirstItem();  // without the lock

  // With the lock held.
  void _requestWork();
  std::size_t _positionOf(const PlayerItem* item) const;
  std::size_t _positionAfter(const PlayerItem* after) const {
    return after ? _positionOf(after) + 1 : _items.size();
  }
  bool _hasBegun(const FilePlayerItem& item) const;
  void _erase(std::size_t first, std::size_t end, const ItemFate& fate);
  bool _isSounding() const { return _rate != 0 && !_items.empty(); }
  void _setItemsChanged(bool isCurrentItemOther);
  void _setChanged(std::string_view keyPath);
  void _dropAllItems(const ItemFate& fate);
  void _startOver();

  // Worker thread.
  void _run();
  bool _step();
  void _collectReturned();
  bool _endHeardItems(const std::optional<AudioRoute::State>& state);
  bool _isHeard(const Ending& ending, const std::optional<AudioRoute::State>& state) const;
  void _followOpening(const AudioRoute::State& state);
  std::optional<std::uint64_t> _ordersWhileSounding() const;
  bool _watch(std::optional<std::uint64_t> orders, const std::optional<AudioRoute::State>& state);
  std::optional<Failure> _faultOf(const std::optional<AudioRoute::State>& state);
  void _fail(const Failure& reason, std::uint64_t orders, std::uint64_t opening);
  void _reportUnderruns();
  void _reportGaps(bool isSounding, const std::optional<AudioRoute::State>& state);
  bool _decodeBlock();
  bool _openNext();
  Result<std::unique_ptr<ClipDecoder>> _decoderOf(FilePlayerItem& item);
  AudioFormat _formatOfSilence() const;
  void _skip(const FilePlayerItem& item, const Failure& failure);
  void _setReady();
  void _sendBlock(SoundBlock* block);
  void _postChanges();

  const std::shared_ptr<AudioRoute> _route;
  const std::shared_ptr<ChangeNotifier> _notifier = std::make_shared<ChangeNotifier>();
  RenderLine _line;
  std::atomic<float> _volume = 1;
  std::atomic<int> _outputRate = 0;  // of the blocks that are made; 0: not yet known

  mutable std::mutex _mutex;  // guards all below
  std::condition_variable _wake;
  std::condition_variable _settled;
  std::thread _worker;
  std::deque<std::shared_ptr<FilePlayerItem>> _items;
  std::size_t _sentItems = 0;     // items whose blocks have all been sent down the line
  std::uint64_t _lastSerial = 0;  // of the recording that was last begun to be decoded
  std::uint32_t _generation = 0;  // incremented when sent blocks become obsolete
  std::uint64_t _orders = 0;      // counts insertions, rate changes and removals
  float _rate = 0;
  bool _hasPlayed = false;  // the output may have taken some of these items' sound
  QueuePlayer::Status _status = QueuePlayer::Status::unknown;
  std::vector<std::string_view> _changes;  // key paths to be posted to the notifier
  Clock::time_point _firstChange;          // when the first of them was set
  bool _hasRequest = false;
  bool _isSettled = false;
  bool _isStopping = false;

  // Used by the worker only.
  std::unique_ptr<ClipDecoder> _decoder;  // of item _sentItems, if of this generation:
  std::uint32_t _decoderGeneration = 0;
  std::shared_ptr<SoundCue> _decoderCue;
  std::optional<AudioFormat> _format;  // the format of the blocks being made
  std::uint64_t _opening = 0;          // the route's opening that the blocks are made for
  std::size_t _latencyFrames = 0;      // latency of the output in that opening
  std::deque<Ending> _endings;
  std::uint64_t _watchedFrames = 0;  // frames taken when the output last made progress
  Clock::time_point _lastMove;
  bool _isWatching = false;
  std::uint64_t _reportedUnderrun = 0;
  std::optional<std::uint64_t> _gapsBefore;  // the output's gaps before the queue sounded
  std::uint64_t _gapCount = 0;               // the output's gap count when it was last open
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_QUEUE_QUEUE_ENGINE_H_
