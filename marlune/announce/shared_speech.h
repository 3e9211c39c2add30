#ifndef MARLUNE_ANNOUNCE_SHARED_SPEECH_H_
#define MARLUNE_ANNOUNCE_SHARED_SPEECH_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "marlune/announce/announcement.h"
#include "marlune/announce/announcer_state.h"
#include "marlune/announce/event_list.h"
#include "marlune/announce/speech.h"
#include "marlune/announce/waiting_line.h"
#include "marlune/playback/shared_playback.h"

namespace marlune {

// What all announcers of the process share: the line of waiting announcements, the two that are in
// the queue, and the audio session while they are. Internal: not installed.
//
// The state is guarded by one lock. Calls on any thread change the line under it; everything that
// touches the queue happens in a turn, on the main thread. An app's functions are called with the
// lock released, so a turn checks the state again after each of them.
class SharedSpeech : private SharedPlaybackListener {
 public:
  using State = std::shared_ptr<Announcer::State>;

  static SharedSpeech& ofProcess();

  // For the announcer's begin and end. `leave` ends all that it has said and reports that. Main
  // thread.
  void enter();
  void leave(const State& announcer);

  // See Announcer. Any thread.
  AnnouncementId say(const State& announcer, Announcement announcement);
  void cancel(const State& announcer, AnnouncementId id);
  void cancelKey(const State& announcer, std::string_view key);
  void stop(const State& announcer);
  void setPaused(bool isPaused);
  bool isPaused() const;
  void setVolume(float volume);
  float volume() const;

  // Guards the fields of an announcer's state, too.
  std::unique_lock<std::mutex> lock() const { return std::unique_lock(_mutex); }

 private:
  using Lock = std::unique_lock<std::mutex>;
  using Place = WaitingLine::Place;
  using Kind = AnnouncementEnd::Kind;
  using Cause = AnnouncementEnd::Cause;

  static constexpr double kFadeSeconds = 0.01;  // of an announcement that is ended at once

  SharedSpeech() = default;

  // shared_speech.cc: calls. Any thread, with the lock held.
  Place _newSpeech();
  void _admit(Place speech);
  bool _makeRoomFor(Place& newcomer);
  template <typename IsMeant>
  void _endEach(const IsMeant& isMeant, Kind kind);
  void _end(Place speech, AnnouncementEnd end);
  void _end(Place speech, Kind kind, std::unique_ptr<const AnnouncementEnd> end = nullptr);
  void _reportEnd(const Speech& speech, Kind kind, std::unique_ptr<const AnnouncementEnd> end);
  void _fail(Place speech, Cause cause, std::string message);

  // shared_speech_turn.cc: a turn lets the queue and the line catch up with each other, and reports
  // what happened. Called with the lock released; posted if the caller is not on the main thread.
  // If it may not report now, it posts another turn that does.
  void _turn(bool mayReport = true);
  void _postTurn();
  void _step(Lock& lock);
  bool _isQuiet() const;
  void _deliver(Lock& lock, const Announcer::State* only);
  void _wakeAt(double time);
  void _postWake();
  void currentItemChanged() override { _turn(); }
  void queueReplaced() override;
  void _routeLost();

  // The parts of a turn. With the lock held, which those with a Lock release while they call an
  // app's functions.
  void _carryOutWishes(bool mustEnd);
  void _expireWaiting();
  void _followPause();
  void _halt();
  void _checkAhead();
  void _takeOver(Lock& lock);
  bool _endAfterRecording();
  bool _makeWayFor(const Speech& next);
  void _queueNext(Lock& lock);
  void _keepPlaying();
  void _endHold();
  void _endSilence(std::shared_ptr<PlayerItem>& item);
  void _releaseSession();

  // Takes the most urgent announcement out of the line and makes it ready to be heard at `start`.
  // Null if it has ended, or is no longer the most urgent; then it is in the line again.
  Place _resolve(Lock& lock, double start);
  std::optional<AnnouncementEnd> _judge(Lock& lock, Speech& speech, double start);
  Preparation _prepare(Lock& lock, const Speech& speech);

  // shared_speech_queue.cc: the queue. Main thread, with the lock held.
  void _followQueue();
  bool _hasBegun(const Speech& speech, const PlayerItem* current) const;
  void _followPlaying(const PlayerItem* current);
  void _finish();
  bool _putInQueue(Place speech, double silence);
  bool _insertItems(Speech& speech, double silence);
  bool _append(const std::shared_ptr<PlayerItem>& item);
  std::shared_ptr<PlayerItem> _appendSilence(double seconds);
  bool _withdrawAhead();
  bool _withdrawUnheard();
  void _remove(const std::shared_ptr<PlayerItem>& item);
  bool _removeFrom(Speech& speech, std::size_t index);
  void _cut(Place& place, Kind kind, bool mustEnd = false);
  bool _activateSession(std::string& fault);
  bool _openOutput(std::string& fault);
  void _loseOutput();
  void _pullBack();
  void _recover();
  void _giveUp(const std::string& fault);

  // The queue as it stands. Times in seconds.
  bool _isQueuePlaying() const { return _queue && SharedPlayback::isPlayingOn(*_queue); }
  double _heardOfCurrent() const;
  std::optional<double> _secondsOf(const std::shared_ptr<PlayerItem>& item) const;
  // Until the sound in the queue has been heard, without the hold and the announcement that is
  // queued ahead with its silence. Nothing if a length is unknown, unless only the current item is
  // left; then 0.
  std::optional<double> _secondsInQueue() const;
  double _secondsLeftOfRecording() const;  // that is playing; 0 if unknown
  double _silenceBefore(const Speech& speech) const;
  double _secondsLeftOf(const std::shared_ptr<PlayerItem>& silence) const;
  double _startOf(const Speech& speech, double secondsBefore) const;
  static double _now();

  mutable std::mutex _mutex;  // guards all below but for the last part
  WaitingLine _waiting;
  Place _playing;                // has begun
  Place _ahead;                  // in the queue and not begun
  Speech* _resolving = nullptr;  // taken out of the line, while an app's functions are called
  std::vector<Place> _spare;     // ended ones, for their memory
  EventList _events;
  AnnouncementId _lastId = 0;
  std::int64_t _lastRank = 0;   // of those that wait; counts up
  std::int64_t _firstRank = 0;  // of those that take over; counts down
  bool _isPaused = false;
  bool _isHoldUnwanted = false;  // since stop(), until the next announcement
  float _volume = 1;
  bool _isTurnPosted = false;
  bool _isInTurn = false;  // changes on the main thread only
  bool _isTurnWanted = false;

  // Main thread only.
  std::size_t _announcers = 0;
  std::shared_ptr<QueuePlayer> _queue;  // the shared one, once something was said
  std::shared_ptr<PlayerItem> _hold;    // the silence at the end of the queue
  // The silence before an announcement that was taken out of the queue. It stays for the next one,
  // so that the queue does not run empty in between.
  std::shared_ptr<PlayerItem> _inherited;
  bool _ownsSession = false;             // activated for announcements and not yet released
  bool _isHalted = false;                // a pause was carried out
  bool _mustPlayOn = false;              // it has stopped sound, which may be a player's
  std::optional<double> _releaseAt;      // when the session of a paused announcement is released
  std::optional<double> _lostAt;         // when the output was lost, until it is back or given up
  std::optional<double> _lastEnd;        // when the last announcement ended
  const PlayerItem* _current = nullptr;  // the queue's current item when it was last seen,
  double _currentSince = 0;              // and since when
  bool _hasChangedQueue = false;         // since the queue was last followed
  std::optional<double> _wake;           // when the next turn is wanted
  std::optional<double> _postedWake;
  std::uint64_t _wakeNumber = 0;
};

}  // namespace marlune

#endif  // MARLUNE_ANNOUNCE_SHARED_SPEECH_H_
