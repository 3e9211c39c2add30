#include "marlune/desktop/audio/clip_decoder.h"

#include <algorithm>

namespace marlune {

namespace {
constexpr std::size_t kReadFrames = SoundBlock::kCapacityFrames;
}  // namespace

std::unique_ptr<ClipDecoder> ClipDecoder::open(const std::string& path, std::string& cause) {
  std::unique_ptr<Recording> recording = Recording::open(path, cause);
  if (!recording) return nullptr;
  return std::unique_ptr<ClipDecoder>(new ClipDecoder(std::move(recording)));
}

bool ClipDecoder::convertTo(const AudioFormat& format, std::string& cause) {
  _converter = ClipConverter::make(clipFormat(), format, cause);
  _channels = static_cast<std::size_t>(format.channels);
  return _converter != nullptr;
}

void ClipDecoder::fill(SoundBlock& block) {
  const std::size_t capacity = SoundBlock::kCapacityFrames * _channels;
  // One sample more than the block takes: only then is it known not to be the last.
  while (!_isRead && _converted.size() - _handedOut <= capacity) _readMore();
  const std::size_t count = std::min(_converted.size() - _handedOut, capacity);
  const auto begin = _converted.begin() + static_cast<long>(_handedOut);
  block.samples.assign(begin, begin + static_cast<long>(count));
  block.frames = count / _channels;
  block.channels = static_cast<int>(_channels);
  _handedOut += count;
  block.endsItem = _isRead && _handedOut == _converted.size();
}

void ClipDecoder::_readMore() {
  _converted.erase(_converted.begin(), _converted.begin() + static_cast<long>(_handedOut));
  _handedOut = 0;
  _read.resize(kReadFrames * static_cast<std::size_t>(clipFormat().channels));
  const std::size_t count = _recording->read(_read.data(), kReadFrames);
  _converter->convert(_read.data(), count, _converted);
  // Asking again after a short read would only find the end once more.
  _isRead = count < kReadFrames;
  if (_isRead) _converter->finish(_converted);
}

}  // namespace marlune
