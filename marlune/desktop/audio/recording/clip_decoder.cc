#include "marlune/desktop/audio/recording/clip_decoder.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

#include "marlune/util/tq_utils.h"

namespace marlune {

namespace {
constexpr std::size_t kReadFrames = SoundBlock::kCapacityFrames;
}  // namespace

Result<std::unique_ptr<ClipDecoder>> ClipDecoder::open(const std::string& path,
                                                       std::unique_ptr<Recording> recording) {
  if (!recording) {
    auto opened = Recording::open(path);
    if (!opened.succeeded()) return opened.failure();
    recording = std::move(opened.value());
  }
  const AudioFormat format = recording->format();
  const double seconds = recording->seconds();
  return std::unique_ptr<ClipDecoder>(new ClipDecoder(path, std::move(recording), format, seconds));
}

std::unique_ptr<ClipDecoder> ClipDecoder::silence(double seconds, const AudioFormat& format) {
  return std::unique_ptr<ClipDecoder>(new ClipDecoder("", nullptr, format, seconds));
}

ClipDecoder::ClipDecoder(std::string path, std::unique_ptr<Recording> recording,
                         const AudioFormat& format, double seconds)
    : _path(std::move(path)),
      _format(format),
      _seconds(seconds),
      _recording(std::move(recording)),
      _missingFrames(_recording ? static_cast<std::uint64_t>(_recording->missingFrames()) : 0) {}

std::optional<Failure> ClipDecoder::convertTo(const AudioFormat& format) {
  if (!_recording) {
    _channels = static_cast<std::size_t>(format.channels);
    _silentFrames =
        static_cast<std::uint64_t>(std::llround(std::max(_seconds, 0.0) * format.sampleRate));
    return std::nullopt;
  }
  auto converter = ClipConverter::make(clipFormat(), format);
  if (!converter.succeeded()) return converter.failure();
  _converter = std::move(converter.value());
  _channels = static_cast<std::size_t>(format.channels);
  _isCopied = _recording->hasShorts() && format == clipFormat();
  return std::nullopt;
}

void ClipDecoder::fill(SoundBlock& block) {
  block.channels = static_cast<int>(_channels);
  if (!_recording) return _fillSilence(block);
  block.hasShorts = _isCopied;
  if (_isCopied) {
    _copy(block);
  } else {
    _convert(block);
  }
  if (block.endsItem && _missingFrames > 0) _reportMissing();
}

void ClipDecoder::_fillSilence(SoundBlock& block) {
  block.hasShorts = true;
  block.frames =
      static_cast<std::size_t>(std::min<std::uint64_t>(_silentFrames, SoundBlock::kCapacityFrames));
  block.shorts.assign(block.frames * _channels, 0);
  _silentFrames -= block.frames;
  block.endsItem = _silentFrames == 0;
}

void ClipDecoder::_reportMissing() const {
  const double seconds = static_cast<double>(_missingFrames) / clipFormat().sampleRate;
  char text[32];
  std::snprintf(text, sizeof text, "%.2f", seconds);
  TQUtils::log("ERROR: \"%@\" is cut off: %lu frames (%@ s) are missing.", _path, _missingFrames,
               text);
}

void ClipDecoder::_convert(SoundBlock& block) {
  const std::size_t capacity = SoundBlock::kCapacityFrames * _channels;
  // One sample more than the block holds: without it the block could be the last.
  while (!_isRead && _converted.size() - _handedOut <= capacity) _readMore();
  const std::size_t count = std::min(_converted.size() - _handedOut, capacity);
  const auto begin = _converted.begin() + static_cast<long>(_handedOut);
  block.samples.assign(begin, begin + static_cast<long>(count));
  block.frames = count / _channels;
  _handedOut += count;
  block.endsItem = _isRead && _handedOut == _converted.size();
}

void ClipDecoder::_copy(SoundBlock& block) {
  block.shorts.resize(SoundBlock::kCapacityFrames * _channels);
  block.frames = _recording->read(block.shorts.data(), SoundBlock::kCapacityFrames);
  _count(block.frames);
  block.endsItem = _framesRead == static_cast<std::uint64_t>(_recording->frameCount()) ||
                   block.frames < SoundBlock::kCapacityFrames;
}

// A file can also turn out shorter than its frame count while it is read.
void ClipDecoder::_count(std::size_t framesRead) {
  _framesRead += framesRead;
  const auto frameCount = static_cast<std::uint64_t>(_recording->frameCount());
  if (framesRead == SoundBlock::kCapacityFrames || _framesRead >= frameCount) return;
  _missingFrames = std::max(_missingFrames, frameCount - _framesRead);
}

void ClipDecoder::_readMore() {
  _converted.erase(_converted.begin(), _converted.begin() + static_cast<long>(_handedOut));
  _handedOut = 0;
  _read.resize(kReadFrames * static_cast<std::size_t>(clipFormat().channels));
  const std::size_t count = _recording->read(_read.data(), kReadFrames);
  _count(count);
  _converter->convert(_read.data(), count, _converted);
  // After a short read another one would only reach the end again.
  _isRead = count < kReadFrames;
  if (_isRead) _converter->finish(_converted);
}

}  // namespace marlune
