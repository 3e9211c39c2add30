#ifndef MARLUNE_DESKTOP_DESKTOP_PLATFORM_H_
#define MARLUNE_DESKTOP_DESKTOP_PLATFORM_H_

#include <memory>
#include <string>

#include "marlune/desktop/audio/output/audio_output.h"
#include "marlune/desktop/services/run_loop.h"
#include "marlune/platform/system_log.h"
#include "marlune/platform/visibility.h"

namespace marlune {

// Options for the desktop services.
struct MARLUNE_API DesktopOptions {
  // The app's own preferences domain, a reverse-DNS identifier.
  std::string preferencesDomain = "marlune";
  // The folder for preference files. Empty: the marlune folder in the user's configuration folder.
  std::string preferencesFolder{};
  // The system log. Null: keep the current log, or log to standard error if there is none.
  std::shared_ptr<SystemLog> systemLog = nullptr;
};

// Fills the process-wide table of services (Platform::shared) with those of a Linux desktop. Keeps
// any service that the app has set before, unless an option replaces it. Opens no device and reads
// no file.
//
// Returns the run loop in the table, or null if the app has set a main thread of another type.
//
// Threads: main thread only, once at start. The run loop is created for the calling thread.
MARLUNE_API std::shared_ptr<RunLoop> installDesktopServices(const DesktopOptions& options = {});

// Sets the audio session and the factories of queue players and items, replacing any previous ones.
// All play to `output`: the sound device (makeDeviceOutput), a file (FileOutput), a clock
// (ClockOutput) or an output of the app's own. Call it before anything plays; it opens nothing. If
// the table has no main thread, no queue player is created and one line is logged: a queue has its
// own threads, and without a main thread the player would run on them.
//
// Threads: main thread only.
MARLUNE_API void installDesktopAudio(std::shared_ptr<AudioOutput> output);

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_DESKTOP_PLATFORM_H_
