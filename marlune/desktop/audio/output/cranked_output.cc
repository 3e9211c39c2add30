#include "marlune/desktop/audio/output/cranked_output.h"

#include <utility>

namespace marlune {

std::optional<Failure> CrankedOutput::open(AudioSource& source, const std::string& role) {
  if (_refusal) return _refusal;
  const std::lock_guard lock(_mutex);
  _loss.reset();
  _source = &source;
  _role = role;
  ++_timesOpened;
  return std::nullopt;
}

std::vector<float> CrankedOutput::crank(std::size_t count) {
  if (!_source) return {};
  std::vector<float> frames(count * static_cast<std::size_t>(_format.channels));
  crankInto(frames.data(), count);
  return frames;
}

std::size_t CrankedOutput::crankInto(float* frames, std::size_t count) {
  if (!_source) return 0;
  const std::size_t sounding = _source->render(frames, count, _format.channels);
  _source->rendered();
  return sounding;
}

void CrankedOutput::lose(std::string reason) {
  {
    const std::lock_guard lock(_mutex);
    _loss = Failure::unavailable(std::move(reason));
  }
  if (_source) _source->rendered();
}

void CrankedOutput::setStallLimitSeconds(double seconds) {
  const std::lock_guard lock(_mutex);
  _stallLimitSeconds = seconds;
}

std::optional<double> CrankedOutput::stallLimitSeconds() const {
  const std::lock_guard lock(_mutex);
  return _stallLimitSeconds;
}

std::optional<Failure> CrankedOutput::loss() const {
  const std::lock_guard lock(_mutex);
  return _loss;
}

}  // namespace marlune
