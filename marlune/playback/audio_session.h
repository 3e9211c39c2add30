#ifndef MARLUNE_PLAYBACK_AUDIO_SESSION_H_
#define MARLUNE_PLAYBACK_AUDIO_SESSION_H_

#include <optional>
#include <string>
#include <string_view>

namespace marlune {

// The app's standing with the device's sound system: what kind of sound it makes, how that goes
// with the sound of others, and whether it is making any just now.
//
// Threads: the main thread only.
class AudioSession {
 public:
  // The category of an app whose sound is to be heard although the device is locked or silenced.
  static constexpr std::string_view kCategoryPlayback = "playback";

  // Options of a category, as bits.
  enum CategoryOption : unsigned {
    kMixWithOthers = 1,  // the sound of others goes on
    kDuckOthers = 2,     // and is turned down while this session is active
  };

  // What an operation reports: success, and an error although it may also have reported success.
  struct Outcome {
    bool succeeded = true;
    std::optional<std::string> error;  // a sentence, when something went wrong
  };

  virtual ~AudioSession() = default;

  virtual Outcome setCategory(std::string_view category, unsigned options) = 0;

  // Activating opens the sound output, deactivating closes it and gives others their level back.
  // Deactivating while sound is running is refused with an error; the session stays active.
  virtual Outcome setActive(bool active) = 0;
};

}  // namespace marlune

#endif  // MARLUNE_PLAYBACK_AUDIO_SESSION_H_
