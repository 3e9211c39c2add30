#ifndef MARLUNE_TESTING_FAKE_AUDIO_SESSION_H_
#define MARLUNE_TESTING_FAKE_AUDIO_SESSION_H_

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "marlune/playback/audio_session.h"

namespace marlune {

// A session that records its calls and refuses what a device would refuse.
class FakeAudioSession : public AudioSession {
 public:
  Outcome setCategory(std::string_view category, unsigned options) override {
    ++timesCategoryWasSet;
    if (categoryOutcome.succeeded) this->category = category, this->options = options;
    return categoryOutcome;
  }

  Outcome setActive(bool active) override {
    if (active && !hasDevice) return {false, "There is no sound device."};
    if (!active && isSoundRunning()) return {false, "Sound is running."};
    if (activationOutcome.succeeded && active != isActive) {
      isActive = active;
      history += active ? '+' : '-';
    }
    return activationOutcome;
  }

  void setRouteLostHandler(const std::function<void()>& handler) override { routeLost = handler; }

  std::string category;  // the current one
  unsigned options = 0;
  bool isActive = false;
  std::string history;  // '+' for each activation, '-' for each deactivation
  int timesCategoryWasSet = 0;

  Outcome categoryOutcome, activationOutcome;  // the results of the next calls
  bool hasDevice = true;
  std::function<void()> routeLost;  // null while there is no announcer
  std::function<bool()> isSoundRunning = [] { return false; };
};

}  // namespace marlune

#endif  // MARLUNE_TESTING_FAKE_AUDIO_SESSION_H_
