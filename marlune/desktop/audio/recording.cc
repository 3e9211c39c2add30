#include "marlune/desktop/audio/recording.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace marlune {

namespace {

constexpr sf_count_t kMaxFileBytes = sf_count_t{1} << 30;
constexpr int kMinSampleRate = 4'000;
constexpr int kMaxSampleRate = 384'000;
constexpr int kMaxChannels = 8;
constexpr sf_count_t kMaxFramesPerByte = 16;  // more than any encoding of an AIFF file packs

constexpr float kLoudest = 1e6f;  // full scale is 1

// Looked at here so that nothing else ever reaches the library's readers of other formats.
bool isAiff(BufferedFile& file) {
  char header[12] = {};
  file.read(header, sizeof header);
  file.seek(0, SEEK_SET);
  return std::memcmp(header, "FORM", 4) == 0 &&
         (std::memcmp(header + 8, "AIFF", 4) == 0 || std::memcmp(header + 8, "AIFC", 4) == 0);
}

std::optional<std::string> faultOf(const SF_INFO& info, sf_count_t fileBytes) {
  if (info.samplerate < kMinSampleRate || info.samplerate > kMaxSampleRate) {
    return "its sample rate is " + std::to_string(info.samplerate);
  }
  if (info.channels < 1 || info.channels > kMaxChannels) {
    return "it has " + std::to_string(info.channels) + " channels";
  }
  if (info.frames <= 0) return "it holds no sound";
  if (info.frames / kMaxFramesPerByte > fileBytes) return "it claims more sound than it can hold";
  return std::nullopt;
}

}  // namespace

std::unique_ptr<Recording> Recording::open(const std::string& path, std::string& cause) {
  std::unique_ptr<Recording> recording(new Recording);
  recording->_file = BufferedFile::open(path, cause);
  if (!recording->_file) return nullptr;
  if (auto fault = recording->_openSound()) {
    cause = *std::move(fault);
    return nullptr;
  }
  return recording;
}

std::optional<std::string> Recording::_openSound() {
  if (_file->size() == 0) return "it is empty";
  if (_file->size() > kMaxFileBytes) return "it is larger than 1 GiB";
  if (!isAiff(*_file)) return "it is no AIFF file";
  SF_INFO info = {};
  _sound.reset(sf_open_virtual(&BufferedFile::operations(), SFM_READ, &info, _file.get()));
  if (!_sound) return sf_strerror(nullptr);
  if (auto fault = faultOf(info, _file->size())) return fault;
  _format = {info.samplerate, info.channels};
  _frameCount = info.frames;
  return std::nullopt;
}

std::size_t Recording::read(float* frames, std::size_t count) {
  const sf_count_t done = sf_readf_float(_sound.get(), frames, static_cast<sf_count_t>(count));
  if (done <= 0) return 0;
  const auto samples = static_cast<std::size_t>(done) * static_cast<std::size_t>(_format.channels);
  // A float encoding can hold anything, and one "not a number" would silence a resampler for good,
  // as would numbers whose sum is infinite.
  std::transform(frames, frames + samples, frames, [](float value) {
    return std::isfinite(value) ? std::clamp(value, -kLoudest, kLoudest) : 0.0f;
  });
  return static_cast<std::size_t>(done);
}

}  // namespace marlune
