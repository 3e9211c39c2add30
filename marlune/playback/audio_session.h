#ifndef MARLUNE_PLAYBACK_AUDIO_SESSION_H_
#define MARLUNE_PLAYBACK_AUDIO_SESSION_H_

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "marlune/platform/visibility.h"

namespace marlune {

// The app's relation to the device's sound system: the kind of sound that it plays, how that mixes
// with other apps' sound, and whether it is playing any now.
//
// Threads: the main thread only.
class MARLUNE_API AudioSession {
 public:
  // The category of an app whose sound stays audible while the device is locked or silenced.
  static constexpr std::string_view kCategoryPlayback = "playback";

  // Options of a category, a bit set.
  enum CategoryOption : unsigned {
    kMixWithOthers = 1,  // other apps' sound continues
    kDuckOthers = 2,     // and is quieter while this session is active
  };

  // The result of an operation. It may report success and an error at the same time.
  struct Outcome {
    bool succeeded = true;
    std::optional<std::string> error;  // a sentence, if something went wrong
  };

  virtual ~AudioSession() = default;

  virtual Outcome setCategory(std::string_view category, unsigned options) = 0;

  // Activating opens the sound output. Deactivating closes it and restores the level of other apps.
  // Deactivating during playback fails with an error, and the session stays active.
  virtual Outcome setActive(bool active) = 0;

  // Sets the handler called on the main thread when the sound moves to another output because the
  // one in use has gone (headphones were unplugged). By default it is never called.
  virtual void setRouteLostHandler(const std::function<void()>& handler) {
    static_cast<void>(handler);
  }
};

}  // namespace marlune

#endif  // MARLUNE_PLAYBACK_AUDIO_SESSION_H_
