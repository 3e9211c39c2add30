#include "marlune/desktop/desktop_platform.h"

#include <string>
#include <utility>

#include "marlune/desktop/audio/desktop_audio_session.h"
#include "marlune/desktop/audio/desktop_queue_player.h"
#include "marlune/desktop/audio/output/audio_route.h"
#include "marlune/desktop/audio/queue/file_player_item.h"
#include "marlune/desktop/audio/recording/recording.h"
#include "marlune/desktop/plist/property_list_file.h"
#include "marlune/desktop/services/boot_clock.h"
#include "marlune/desktop/services/file_preferences.h"
#include "marlune/platform/platform.h"
#include "marlune/platform/standard_error_log.h"
#include "marlune/util/tq_utils.h"

namespace marlune {

namespace {

std::shared_ptr<Preferences> preferencesFor(const DesktopOptions& options) {
  return std::make_shared<FilePreferences>(options.preferencesFolder.empty()
                                               ? FilePreferences::defaultFolder()
                                               : options.preferencesFolder,
                                           options.preferencesDomain);
}

Result<RecordingFacts> examined(const std::string& path) {
  const auto opened = Recording::open(path);
  if (!opened.succeeded()) return opened.failure();
  const Recording& recording = *opened.value();
  if (recording.missingFrames() == 0) return RecordingFacts{recording.seconds()};
  return Failure::malformed("it is cut off: " + std::to_string(recording.missingFrames()) +
                            " frames are missing");
}

// Creates queues over one route. Without a main thread it returns null, and logs that once.
class QueueMaker {
 public:
  explicit QueueMaker(std::shared_ptr<AudioRoute> route) : _route(std::move(route)) {}

  std::shared_ptr<QueuePlayer> operator()() {
    if (Platform::shared().mainThread) return DesktopQueuePlayer::overRoute(_route);
    if (!std::exchange(_hasRefused, true)) {
      TQUtils::log("ERROR: The platform has no main thread. No queue player is made.");
    }
    return nullptr;
  }

 private:
  std::shared_ptr<AudioRoute> _route;
  bool _hasRefused = false;
};

}  // namespace

std::shared_ptr<RunLoop> installDesktopServices(const DesktopOptions& options) {
  Platform& platform = Platform::shared();
  if (options.systemLog) platform.systemLog = options.systemLog;
  if (!platform.systemLog) platform.systemLog = std::make_shared<StandardErrorLog>();
  if (!platform.preferences) platform.preferences = preferencesFor(options);
  if (!platform.propertyListReader) {
    platform.propertyListReader = std::make_shared<PropertyListFile>();
  }
  if (!platform.clock) platform.clock = std::make_shared<BootClock>();
  if (!platform.mainThread) platform.mainThread = std::make_shared<RunLoop>();
  return std::dynamic_pointer_cast<RunLoop>(platform.mainThread);
}

void installDesktopAudio(std::shared_ptr<AudioOutput> output) {
  const auto route = std::make_shared<AudioRoute>(std::move(output));
  Platform& platform = Platform::shared();
  platform.audioSession = std::make_shared<DesktopAudioSession>(route);
  platform.makeQueuePlayer = QueueMaker(route);
  platform.makePlayerItem = [](const std::string& path) {
    return std::make_shared<FilePlayerItem>(path);
  };
  platform.silentItem = [](double seconds) { return FilePlayerItem::silence(seconds); };
  platform.examineRecording = &examined;
}

}  // namespace marlune
