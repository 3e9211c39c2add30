#include "marlune/desktop/audio/output/audio_route.h"

#include <utility>

namespace marlune {

std::optional<Failure> AudioRoute::open(const std::string& role) {
  const std::lock_guard lock(_mutex);
  return _isOpen && !_loss() ? std::nullopt : _openLocked(role);
}

void AudioRoute::reopen() {
  const std::lock_guard lock(_mutex);
  if (!_isOpen && _role) _openLocked(std::string(*_role));
}

std::optional<Failure> AudioRoute::_openLocked(const std::string& role) {
  _closeLocked();
  _role = role;
  ++_opening;  // before the output takes any frames
  _refusal = _output->open(*this, role);
  _isOpen = !_refusal;
  return _refusal;
}

void AudioRoute::close() {
  const std::lock_guard lock(_mutex);
  _closeLocked();
}

void AudioRoute::_closeLocked() {
  if (_isOpen) _output->close();
  _isOpen = false;
  _lost.reset();
}

bool AudioRoute::isOpen() const {
  const std::lock_guard lock(_mutex);
  return _isOpen;
}

Failure AudioRoute::whyClosed() const {
  const std::lock_guard lock(_mutex);
  return _refusal.value_or(Failure::unavailable("No sound output is open."));
}

bool AudioRoute::isSounding() const {
  const std::lock_guard lock(_userMutex);
  return _user && _user->isSounding();
}

void AudioRoute::enter(RouteUser& user) {
  const std::lock_guard lock(_userMutex);
  if (_user == &user) return;
  _user = &user;
  _gate.setSource(&user);
}

void AudioRoute::leave(const RouteUser& user) {
  const std::lock_guard lock(_userMutex);
  if (_user != &user) return;
  _user = nullptr;
  _gate.setSource(nullptr);
}

std::optional<AudioRoute::State> AudioRoute::stateFor(const RouteUser& user) const {
  const std::lock_guard lock(_mutex);
  if (!_isOpen) return std::nullopt;
  const std::lock_guard userLock(_userMutex);
  return State{_opening, _user == &user,     _output->latencyFrames(), _output->stallLimitSeconds(),
               _loss(),  _output->gapCount()};
}

std::optional<AudioFormat> AudioRoute::formatForClip(const AudioFormat& clip,
                                                     std::uint64_t opening) {
  const std::lock_guard lock(_mutex);
  if (!_isOpen || _opening != opening) return std::nullopt;
  return _output->formatForClip(clip);
}

void AudioRoute::takeAvailable(const RouteUser& user, std::size_t frames) {
  const std::lock_guard lock(_mutex);
  {
    const std::lock_guard userLock(_userMutex);
    if (!_isOpen || _user != &user) return;
  }
  _output->takeAvailable(frames);
}

void AudioRoute::setLost(std::uint64_t opening, Failure reason) {
  const std::lock_guard lock(_mutex);
  if (_isOpen && _opening == opening) _lost = std::move(reason);
}

std::optional<Failure> AudioRoute::_loss() const { return _lost ? _lost : _output->loss(); }

void AudioRoute::rendered() {
  const std::lock_guard lock(_userMutex);
  if (_user) _user->rendered();
}

}  // namespace marlune
