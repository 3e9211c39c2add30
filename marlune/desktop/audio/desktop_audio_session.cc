#include "marlune/desktop/audio/desktop_audio_session.h"

namespace marlune {

namespace {
AudioSession::Outcome failure(std::string error) { return {false, std::move(error)}; }
}  // namespace

AudioSession::Outcome DesktopAudioSession::setCategory(std::string_view category,
                                                       unsigned options) {
  if (category != kCategoryPlayback) {
    return failure("There is no category \"" + std::string(category) + "\" on this system.");
  }
  _options = options;
  return {};
}

AudioSession::Outcome DesktopAudioSession::setActive(bool active) {
  if (active) {
    auto error = _route->open(_options & kDuckOthers ? _duckingRole : std::string());
    return error ? failure(std::move(error->message)) : Outcome{};
  }
  if (_route->isOpen() && _route->isSounding()) {
    return failure("Sound is running: the session stays active.");
  }
  _route->close();
  return {};
}

}  // namespace marlune
