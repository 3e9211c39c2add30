#ifndef MARLUNE_DESKTOP_AUDIO_DESKTOP_AUDIO_SESSION_H_
#define MARLUNE_DESKTOP_AUDIO_DESKTOP_AUDIO_SESSION_H_

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "marlune/desktop/audio/output/audio_route.h"
#include "marlune/playback/audio_session.h"

namespace marlune {

// An audio session over a route. It is active while the route is open.
//
// Threads: the main thread only.
class DesktopAudioSession : public AudioSession {
 public:
  // `duckingRole` is the role passed to a sound server when other programs are to be ducked. The
  // server decides which roles trigger ducking (PulseAudio: module-role-ducking trigger_roles=).
  explicit DesktopAudioSession(std::shared_ptr<AudioRoute> route,
                               std::string duckingRole = "announce")
      : _route(std::move(route)), _duckingRole(std::move(duckingRole)) {}

  // Takes effect at the next activation. Playback is the only category; a desktop always mixes
  // programs.
  Outcome setCategory(std::string_view category, unsigned options) override;

  // Sound is running while the queue has items and a rate other than 0. Does nothing if the session
  // already has the requested state.
  Outcome setActive(bool active) override;

 private:
  const std::shared_ptr<AudioRoute> _route;
  const std::string _duckingRole;
  unsigned _options = 0;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_DESKTOP_AUDIO_SESSION_H_
