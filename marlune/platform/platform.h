#ifndef MARLUNE_PLATFORM_PLATFORM_H_
#define MARLUNE_PLATFORM_PLATFORM_H_

#include <functional>
#include <memory>
#include <string>

#include "marlune/platform/clock.h"
#include "marlune/platform/failure.h"
#include "marlune/platform/main_thread.h"
#include "marlune/platform/preferences.h"
#include "marlune/platform/property_list_reader.h"
#include "marlune/platform/recording_facts.h"
#include "marlune/platform/resource_bundle.h"
#include "marlune/platform/system_log.h"
#include "marlune/platform/visibility.h"

namespace marlune {

class AudioSession;
class PlayerItem;
class QueuePlayer;

// The services that the library needs from the system, in one table for the process. The app, or
// the desktop library for it, fills the table once at start, before any other call; tests set
// fakes. A service may be null; the comments below give what happens then.
//
// Threads: any may read the table, at any time. While it is being filled, no other thread may use
// the library.
struct MARLUNE_API Platform {
  std::shared_ptr<SystemLog> systemLog;      // null: lines go to standard error
  std::shared_ptr<Preferences> preferences;  // null: every preference is missing
  // null: every thread counts as the main thread, work runs at once, and delayed work is dropped
  // after a log line. A queue player with threads of its own needs a main thread; the desktop's is
  // not created without one.
  std::shared_ptr<MainThread> mainThread;
  std::shared_ptr<PropertyListReader> propertyListReader;  // null: no file can be read
  std::shared_ptr<AudioSession> audioSession;              // null: activation reports an error

  // Make a new, empty queue player, and an item for the file at a path. If a function is missing or
  // returns null, the player logs that nothing can be played.
  std::function<std::shared_ptr<QueuePlayer>()> makeQueuePlayer;
  std::function<std::shared_ptr<PlayerItem>(const std::string& path)> makePlayerItem;

  // The rest is used by announcers only.
  //
  // Makes an item that is silent for `seconds`. Missing: pauses, lead-in and hold time are 0.
  std::function<std::shared_ptr<PlayerItem>(double seconds)> silentItem;
  // Opens a recording without playing it; fails, with a clause, if it cannot be played whole. Any
  // thread. Missing: recordings are not checked and their length is unknown.
  std::function<Result<RecordingFacts>(const std::string& path)> examineRecording;
  std::shared_ptr<Clock> clock;  // null: a clock that may stop while the device sleeps

  // The table of this process.
  static Platform& shared();
};

}  // namespace marlune

#endif  // MARLUNE_PLATFORM_PLATFORM_H_
