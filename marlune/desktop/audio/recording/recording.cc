#include "marlune/desktop/audio/recording/recording.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "marlune/desktop/audio/base/sample_conversion.h"
#include "marlune/desktop/audio/recording/sndfile_reader.h"

namespace marlune {

namespace {

constexpr sf_count_t kMaxFileBytes = sf_count_t{1} << 30;
constexpr int kMinSampleRate = 4'000;
constexpr int kMaxSampleRate = 384'000;
constexpr int kMaxChannels = 8;
constexpr sf_count_t kMaxFramesPerByte = 16;  // more than any AIFF encoding achieves

constexpr float kLoudest = 1e6f;  // full scale is 1

std::optional<Failure> faultOf(const SF_INFO& info, sf_count_t fileBytes) {
  if (info.samplerate < kMinSampleRate || info.samplerate > kMaxSampleRate) {
    return Failure::malformed("its sample rate is " + std::to_string(info.samplerate));
  }
  if (info.channels < 1 || info.channels > kMaxChannels) {
    return Failure::malformed("it has " + std::to_string(info.channels) + " channels");
  }
  if (info.frames <= 0) return Failure::malformed("it contains no sound");
  if (info.frames / kMaxFramesPerByte > fileBytes)
    return Failure::malformed("it claims more sound than it can hold");
  return std::nullopt;
}

}  // namespace

Recording::Recording() = default;
Recording::~Recording() = default;

Result<std::unique_ptr<Recording>> Recording::open(const std::string& path) {
  auto file = BufferedFile::open(path);
  if (!file.succeeded()) return file.failure();
  std::unique_ptr<Recording> recording(new Recording);
  recording->_file = std::move(file.value());
  if (auto fault = recording->_openSound()) return *std::move(fault);
  return recording;
}

std::optional<Failure> Recording::_openSound() {
  if (_file->size() == 0) return Failure::malformed("it is empty");
  if (_file->size() > kMaxFileBytes) return Failure::malformed("it is larger than 1 GiB");
  // Checked here so that libsndfile's readers for other formats never see the data.
  if (!isAiff(*_file)) return Failure::malformed("it is not an AIFF file");
  const std::optional<AiffHeader> header = AiffHeader::read(*_file);
  if (header && _openPlain(*header)) return std::nullopt;
  if (auto fault = _openThroughLibrary()) return fault;
  if (header) {
    const auto held = static_cast<std::uint64_t>(_frameCount);
    _missingFrames = static_cast<std::int64_t>(header->missingFrames(held));
  }
  return std::nullopt;
}

// Most recordings are plain 16-bit AIFF and need no library: it reads the header slowly, field by
// field. Returns false for anything unusual.
bool Recording::_openPlain(const AiffHeader& header) {
  const auto frameBytes = static_cast<std::uint64_t>(header.channels) * sizeof(short);
  const bool isPlain = header.bits == 16 && header.sampleBytes == sizeof(short) &&
                       header.channels <= kMaxChannels && header.sampleRate >= kMinSampleRate &&
                       header.sampleRate <= kMaxSampleRate;
  if (!isPlain || header.heldBytes < frameBytes) return false;
  const std::uint64_t held = header.heldBytes / frameBytes;
  // The library counts the bytes if the header claims fewer frames.
  if (header.claimedFrames < header.claimedBytes / frameBytes) return false;
  _format = {header.sampleRate, header.channels};
  _frameCount = _plainFramesLeft = static_cast<std::int64_t>(held);
  _missingFrames = static_cast<std::int64_t>(header.missingFrames(held));
  _isSwapped = header.isLittleEndian != (std::endian::native == std::endian::little);
  _file->seek(static_cast<sf_count_t>(header.soundStart), SEEK_SET);
  return true;
}

std::optional<Failure> Recording::_openThroughLibrary() {
  auto sound = SndfileReader::open(*_file);
  if (!sound.succeeded()) return sound.failure();
  _sound = std::move(sound.value());
  const SF_INFO& info = _sound->info();
  if (auto fault = faultOf(info, _file->size())) return fault;
  _format = {info.samplerate, info.channels};
  _frameCount = info.frames;
  return std::nullopt;
}

std::size_t Recording::read(short* frames, std::size_t count) {
  const auto channels = static_cast<std::size_t>(_format.channels);
  count = std::min(count, static_cast<std::size_t>(_plainFramesLeft));
  const auto bytes = static_cast<sf_count_t>(count * channels * sizeof(short));
  const auto done = static_cast<std::size_t>(_file->read(frames, bytes)) / sizeof(short) / channels;
  _plainFramesLeft = done == count ? _plainFramesLeft - static_cast<std::int64_t>(done) : 0;
  if (_isSwapped) std::transform(frames, frames + done * channels, frames, byteSwapped);
  return done;
}

std::size_t Recording::read(float* frames, std::size_t count) {
  if (hasShorts()) return _readPlain(frames, count);
  const std::size_t done = _sound->read(frames, count);
  const std::size_t samples = done * static_cast<std::size_t>(_format.channels);
  // Float encodings can contain any value. A NaN, or values whose sum is infinite, would silence a
  // resampler permanently.
  std::transform(frames, frames + samples, frames, [](float value) {
    return std::isfinite(value) ? std::clamp(value, -kLoudest, kLoudest) : 0.0f;
  });
  return done;
}

std::size_t Recording::_readPlain(float* frames, std::size_t count) {
  _plain.resize(count * static_cast<std::size_t>(_format.channels));
  const std::size_t done = read(_plain.data(), count);
  const auto samples = static_cast<long>(done * static_cast<std::size_t>(_format.channels));
  std::transform(_plain.begin(), _plain.begin() + samples, frames, floatFromShort);
  return done;
}

}  // namespace marlune
