#ifndef MARLUNE_PLATFORM_PLATFORM_H_
#define MARLUNE_PLATFORM_PLATFORM_H_

#include <functional>
#include <memory>
#include <string>

#include "marlune/platform/main_thread.h"
#include "marlune/platform/preferences.h"
#include "marlune/platform/property_list_reader.h"
#include "marlune/platform/resource_bundle.h"
#include "marlune/platform/system_log.h"

namespace marlune {

class AudioSession;
class PlayerItem;
class QueuePlayer;

// What the library asks of the system it runs on, in one table for the process. The app, or the
// desktop library for it, fills the table once at start, before any other call; tests put their
// fakes in. A service that is missing (null) is done without: see each.
//
// Threads: any may read the table, at any time; no other runs while it is filled.
struct Platform {
  std::shared_ptr<SystemLog> systemLog;      // null: lines go to standard error
  std::shared_ptr<Preferences> preferences;  // null: every preference is missing
  // null: every thread counts as the main thread, work runs at once, delayed work is dropped with a
  // line. A queue player that has threads of its own needs one: the desktop's is not made without.
  std::shared_ptr<MainThread> mainThread;
  std::shared_ptr<PropertyListReader> propertyListReader;  // null: no file can be read
  std::shared_ptr<AudioSession> audioSession;              // null: activation reports an error

  // A new, empty queue player, and an item for the file at a path. Missing or returning null: the
  // player logs that nothing can be played.
  std::function<std::shared_ptr<QueuePlayer>()> makeQueuePlayer;
  std::function<std::shared_ptr<PlayerItem>(const std::string& path)> makePlayerItem;

  // The process's table.
  static Platform& shared();
};

}  // namespace marlune

#endif  // MARLUNE_PLATFORM_PLATFORM_H_
