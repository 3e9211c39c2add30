#include "marlune/desktop/audio/recording/clip_converter.h"

#include <algorithm>
#include <numeric>
#include <string>

#include "marlune/desktop/audio/recording/soxr_library.h"

namespace marlune {

namespace {

// At least half the length of the resampler's filter for all common rates.
constexpr std::size_t kMinMarginFrames = 512;
// Upper limit: beyond it, a margin of whole frames at both rates is not worth its cost.
constexpr std::size_t kMaxMarginFrames = 8'192;

// A number of frames of the clip that is also a whole number of output frames, so that removing the
// margin does not shift the sound. REQUIRES: rates above 0.
std::size_t marginOf(int fromRate, int toRate) {
  const auto unit = static_cast<std::size_t>(fromRate / std::gcd(fromRate, toRate));
  if (unit == 0 || unit > kMaxMarginFrames) return kMaxMarginFrames;
  return (kMinMarginFrames + unit - 1) / unit * unit;
}

// frames × toRate / fromRate, rounded to nearest.
std::int64_t atRate(std::int64_t frames, int fromRate, int toRate) {
  return (frames * toRate + fromRate / 2) / fromRate;
}

// Appends `count` frames that continue the sound beyond the last frame of `tail` (or, backwards,
// before its first) by reflection about that frame. If `tail` is too short, the last value is held.
void appendReflection(const std::vector<float>& tail, std::size_t channels, std::size_t count,
                      bool isAtEnd, std::vector<float>& to) {
  const std::size_t frames = tail.size() / channels;
  const std::size_t last = frames - 1;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t distance = std::min(isAtEnd ? i + 1 : count - i, last);
    const std::size_t pivot = isAtEnd ? last : 0;
    const std::size_t mirror = isAtEnd ? last - distance : distance;
    for (std::size_t c = 0; c < channels; ++c) {
      to.push_back(2 * tail[pivot * channels + c] - tail[mirror * channels + c]);
    }
  }
}

}  // namespace

Result<std::unique_ptr<ClipConverter>> ClipConverter::make(const AudioFormat& from,
                                                           const AudioFormat& to) {
  std::unique_ptr<ClipConverter> converter(new ClipConverter(from, to));
  if (from.sampleRate != to.sampleRate) {
    if (auto failure = converter->_prepareResampling()) return *std::move(failure);
  }
  return converter;
}

std::optional<Failure> ClipConverter::_prepareResampling() {
  const auto failure = [](const std::string& cause) {
    return Failure::unavailable("it cannot be resampled: " + cause);
  };
  const auto loaded = SoxrLibrary::shared();
  if (!loaded.succeeded()) return failure(loaded.failure().message);
  _library = loaded.value();
  const soxr_quality_spec_t quality = _library->qualitySpec(SOXR_HQ, 0);
  soxr_error_t error = nullptr;
  _resampler = {
      _library->create(_from.sampleRate, _to.sampleRate, static_cast<unsigned>(_from.channels),
                       &error, nullptr, &quality, nullptr),
      _library->destroy};
  if (!_resampler) return failure(error ? error : "");
  _margin = marginOf(_from.sampleRate, _to.sampleRate);
  _toSkip = atRate(static_cast<std::int64_t>(_margin), _from.sampleRate, _to.sampleRate);
  return std::nullopt;
}

void ClipConverter::convert(const float* frames, std::size_t count, std::vector<float>& to) {
  if (!_resampler) {
    _mapChannels(frames, count, to);
    return;
  }
  _taken += static_cast<std::int64_t>(count);
  const std::size_t samples = count * _channels();
  _tail.insert(_tail.end(), frames, frames + samples);
  const std::size_t keep = (_margin + 1) * _channels();
  if (_hasBegun) {
    _resample(frames, count);
  } else {
    _head.insert(_head.end(), frames, frames + samples);
    if (_head.size() >= keep) _beginWith(_head.data(), _head.size() / _channels());
  }
  if (_tail.size() > keep) _tail.erase(_tail.begin(), _tail.end() - static_cast<long>(keep));
  _handOut(/*isWhole=*/false, to);
}

void ClipConverter::_beginWith(const float* frames, std::size_t count) {
  std::vector<float> reflected;
  appendReflection(_head, _channels(), _margin, /*isAtEnd=*/false, reflected);
  _resample(reflected.data(), _margin);
  _resample(frames, count);
  _hasBegun = true;
}

void ClipConverter::finish(std::vector<float>& to) {
  if (!_resampler || _taken == 0) return;
  if (!_hasBegun) _beginWith(_head.data(), _head.size() / _channels());
  std::vector<float> reflected;
  appendReflection(_tail, _channels(), _margin, /*isAtEnd=*/true, reflected);
  _resample(reflected.data(), _margin);
  _drain();
  _handOut(/*isWhole=*/true, to);
}

void ClipConverter::_resample(const float* frames, std::size_t count) {
  std::size_t done = 0;
  while (done < count) {
    const std::size_t former = _resampled.size();
    const auto room = static_cast<std::size_t>(
        atRate(static_cast<std::int64_t>(count - done), _from.sampleRate, _to.sampleRate) + 64);
    _resampled.resize(former + room * _channels());
    std::size_t in = 0;
    std::size_t out = 0;
    const soxr_error_t error =
        _library->process(_resampler.get(), frames + done * _channels(), count - done, &in,
                          _resampled.data() + former, room, &out);
    _resampled.resize(former + out * _channels());
    if (error || (in == 0 && out == 0)) return;
    done += in;
  }
}

void ClipConverter::_drain() {
  constexpr std::size_t kRoom = 4'096;
  std::size_t out = 0;
  do {
    const std::size_t former = _resampled.size();
    _resampled.resize(former + kRoom * _channels());
    if (_library->process(_resampler.get(), nullptr, 0, nullptr, _resampled.data() + former, kRoom,
                          &out)) {
      out = 0;
    }
    _resampled.resize(former + out * _channels());
  } while (out > 0);
}

void ClipConverter::_handOut(bool isWhole, std::vector<float>& to) {
  auto available = static_cast<std::int64_t>(_resampled.size() / _channels());
  const std::int64_t skipped = std::min(available, _toSkip);
  _toSkip -= skipped;
  available -= skipped;
  const std::int64_t length = atRate(_taken, _from.sampleRate, _to.sampleRate);
  const std::int64_t count = std::min(available, length - _handedOut);
  _mapChannels(_resampled.data() + static_cast<std::size_t>(skipped) * _channels(),
               static_cast<std::size_t>(count), to);
  _handedOut += count;
  if (isWhole) {
    _resampled.clear();
    return;
  }
  const auto used = static_cast<std::size_t>(skipped + count) * _channels();
  _resampled.erase(_resampled.begin(), _resampled.begin() + static_cast<long>(used));
}

// Extra channels are folded onto the output channels, each the mean of those that map to it. A mono
// output takes only the first two, front left and right.
void ClipConverter::_mapChannels(const float* frames, std::size_t count,
                                 std::vector<float>& to) const {
  const auto from = static_cast<std::size_t>(_from.channels);
  const auto channels = static_cast<std::size_t>(_to.channels);
  if (from == channels) {
    to.insert(to.end(), frames, frames + count * from);
    return;
  }
  for (const float* frame = frames; frame != frames + count * from; frame += from) {
    for (std::size_t c = 0; c < channels; ++c) {
      float sum = 0;
      float parts = 0;
      for (std::size_t k = c; k < from; k += channels, ++parts) sum += frame[k];
      if (parts > 0) sum /= parts;
      to.push_back(from == 1 && c == 1 ? frame[0] : sum);
    }
  }
}

}  // namespace marlune
