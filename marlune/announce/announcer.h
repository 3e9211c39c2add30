#ifndef MARLUNE_ANNOUNCE_ANNOUNCER_H_
#define MARLUNE_ANNOUNCE_ANNOUNCER_H_

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "marlune/announce/announcement.h"
#include "marlune/announce/announcement_observer.h"
#include "marlune/announce/announcer_settings.h"
#include "marlune/announce/prepared_phrase.h"
#include "marlune/decompose/decomposer.h"
#include "marlune/grammar/parser.h"
#include "marlune/platform/resource_bundle.h"
#include "marlune/platform/visibility.h"

namespace marlune {

// Says announcements: chains a parser, a decomposer and the queue of the process, and reports what
// became of each announcement.
//
// All announcers share one line, ordered by priority, and one queue, which players use, too. The
// recordings of an announcement follow each other without a gap. The next announcement enters the
// queue at most 300 ms before the playing one ends. At that moment its words are asked for, its
// check is called and startWithin is judged, by the time at which it will be heard; judged again
// after a pause, a lost output or a sleep of the device. One that is in the queue and has not begun
// gives way to a more urgent one, and waits again.
//
// What a plain Player plays is neither taken over nor stopped, and keeps its place in the queue.
// A recording that turns out to be unplayable does not silence the others of its announcement.
//
// The services are those of Platform::shared(). Announcers need a queue player that reports the
// fates of its items (see QueuePlayer); without a main thread, which gives them their timers, they
// act only when they are called.
//
// Threads: any, at any time; the destructor on the main thread only. Observers, wordsWhenDue and
// isStillValid are called on the main thread, with no lock held; they may call announcers, and must
// not throw.
class MARLUNE_API Announcer {
 public:
  // Takes over the parser and the decomposer. A null parser leaves words unchanged. The recordings
  // are the ".aif" resources in the sub-directory `directory` of `bundle`, the decomposer's. A null
  // decomposer or bundle can say nothing.
  static std::unique_ptr<Announcer> initWithParser(std::unique_ptr<Parser> parser,
                                                   std::unique_ptr<Decomposer> decomposer,
                                                   std::string directory,
                                                   std::shared_ptr<const ResourceBundle> bundle,
                                                   const AnnouncerSettings& settings = {});

  // As stop(). The ends are reported before it returns.
  ~Announcer();
  Announcer(const Announcer&) = delete;
  Announcer& operator=(const Announcer&) = delete;

  // Another language or voice for the announcements whose turn has not come. What is in the queue
  // is said to its end.
  void setVoice(std::unique_ptr<Parser> parser, std::unique_ptr<Decomposer> decomposer,
                std::string directory, std::shared_ptr<const ResourceBundle> bundle);

  void setObserver(AnnouncementObserver observer);
  void setSettings(const AnnouncerSettings& settings);
  AnnouncerSettings settings() const;

  // How the words would be said, without a sound. Remembers the answer and what it has learnt of
  // the recordings: saying the same words later opens no file on the main thread.
  Preparation prepare(const std::vector<std::string>& words);

  // Returns at once. The observer hears nothing of the announcement before it has returned, unless
  // there is no main thread. If the queue is full, the least urgent waiting announcement, of
  // several the youngest, fails.
  AnnouncementId say(Announcement announcement);

  // End announcements of this announcer; the one that is playing fades out within 10 ms, unless
  // the output has taken the last of it. Unknown and ended ids do nothing.
  void cancel(AnnouncementId id);
  void cancelKey(std::string_view key);
  // Ends all of this announcer. If nothing else waits or plays, the audio session is released as
  // soon as the fade has been heard.
  void stop();

  // Of the shared queue, and so for all announcers. While paused, nothing begins. The audio session
  // is released, at once or, in the middle of an announcement, after pausedSessionSeconds.
  void pause();
  void resume();
  bool isPaused() const;

  // Of the shared queue: a factor for the samples, from 0 to 1; 1 at first.
  void setVolume(float volume);
  float volume() const;

  class State;  // internal

 private:
  explicit Announcer(std::shared_ptr<State> state);

  const std::shared_ptr<State> _state;
};

}  // namespace marlune

#endif  // MARLUNE_ANNOUNCE_ANNOUNCER_H_
