#include "marlune/desktop/audio/output/clock_output.h"

#include <chrono>
#include <utility>
#include <vector>

namespace marlune {

ClockOutput::ClockOutput(AudioFormat format, Listener listener, double speed,
                         std::size_t periodFrames)
    : _format(format), _listener(std::move(listener)), _speed(speed), _periodFrames(periodFrames) {}

std::optional<Failure> ClockOutput::open(AudioSource& source, const std::string&) {
  _isLost.store(false);
  _isOpen.store(true);
  _thread = std::thread([this, &source] { _run(source); });
  return std::nullopt;
}

void ClockOutput::close() {
  _isOpen.store(false);
  if (_thread.joinable()) _thread.join();
}

std::optional<Failure> ClockOutput::loss() const {
  if (!_isLost.load()) return std::nullopt;
  return Failure::unavailable("The clock has been stopped.");
}

// Each period has a deadline computed from the start, so that late wake-ups do not accumulate.
void ClockOutput::_run(AudioSource& source) {
  const std::chrono::duration<double> period(static_cast<double>(_periodFrames) /
                                             (_format.sampleRate * _speed));
  std::vector<float> frames(_periodFrames * static_cast<std::size_t>(_format.channels));
  const auto start = std::chrono::steady_clock::now();
  for (std::uint64_t periods = 1; _isOpen.load() && !_isLost.load(); ++periods) {
    const std::size_t sounding = source.render(frames.data(), _periodFrames, _format.channels);
    if (_listener) _listener(frames.data(), _periodFrames, sounding);
    std::this_thread::sleep_until(start +
                                  std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                                      period * static_cast<double>(periods)));
  }
}

}  // namespace marlune
