#ifndef MARLUNE_DESKTOP_DESKTOP_PLATFORM_H_
#define MARLUNE_DESKTOP_DESKTOP_PLATFORM_H_

#include <memory>
#include <string>

#include "marlune/desktop/audio/audio_output.h"
#include "marlune/desktop/services/run_loop.h"
#include "marlune/platform/system_log.h"

namespace marlune {

// What an app may choose about the services of a desktop.
struct DesktopOptions {
  // The app's own preferences domain, its reverse-DNS identifier.
  std::string preferencesDomain = "marlune";
  // Where preferences are kept; empty: the marlune folder in the user's configuration folder.
  std::string preferencesFolder{};
  // Where lines go; null: to standard error, or where they went before.
  std::shared_ptr<SystemLog> systemLog = nullptr;
};

// Fills the process's table of services (Platform::shared) with those of a Linux desktop. A service
// that the app has put there before stays, unless an option names another. Opens no device and
// reads no file.
//
// Returns the run loop in the table; null when the app has put a main thread of another kind there.
//
// Threads: the main thread only, once, at start: a run loop is made for the calling thread.
std::shared_ptr<RunLoop> installDesktopServices(const DesktopOptions& options = {});

// Puts an audio session, a queue player and its items into the table, in the place of those that
// were there, all playing to `output`: the sound device (makeDeviceOutput), a file (FileOutput), a
// clock (ClockOutput) or one of the app's own. Before anything plays; opens nothing. Without a main
// thread in the table no queue player is made, and one line says so: a queue has threads of its
// own, and without a main thread the player would run on them.
//
// Threads: the main thread only.
void installDesktopAudio(std::shared_ptr<AudioOutput> output);

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_DESKTOP_PLATFORM_H_
