#include "marlune/desktop/audio/queue/render_line.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "marlune/desktop/audio/base/sample_conversion.h"

namespace marlune {

namespace {

void copySamples(const SoundBlock& block, std::size_t from, std::size_t count, float* to) {
  if (block.hasShorts) {
    std::transform(block.shorts.data() + from, block.shorts.data() + from + count, to,
                   floatFromShort);
  } else {
    std::copy_n(block.samples.data() + from, count, to);
  }
}

void copySamples(const SoundBlock& block, std::size_t from, std::size_t count, short* to) {
  if (block.hasShorts) {
    std::copy_n(block.shorts.data() + from, count, to);
  } else {
    std::transform(block.samples.data() + from, block.samples.data() + from + count, to,
                   shortFromFloat);
  }
}

float scaled(float sample, float factor) { return sample * factor; }
short scaled(short sample, float factor) {
  return static_cast<short>(std::lrintf(static_cast<float>(sample) * factor));
}

}  // namespace

// Either this sees that the recording has begun, or the callback sees the limit; perhaps both.
bool RenderLine::holdBack(std::uint64_t serial) {
  _limit.store(serial);
  if (_begun.load() < serial) return true;
  allowAll();
  return false;
}

SoundBlock* RenderLine::freshBlock() {
  if (_fresh.empty()) {
    if (_blocks.size() == kBlocks) return nullptr;
    _blocks.push_back(std::make_unique<SoundBlock>());
    return _blocks.back().get();
  }
  SoundBlock* const block = _fresh.back();
  _fresh.pop_back();
  return block;
}

void RenderLine::send(SoundBlock* block) {
  _framesSent += block->frames;
  _sent.put(block);
}

template <typename Sample>
std::size_t RenderLine::_render(Sample* frames, std::size_t count, int channels,
                                std::uint64_t opening) noexcept {
  const auto samples = static_cast<std::size_t>(channels);
  const std::uint64_t before = _framesTaken.load(std::memory_order_relaxed);
  const bool isRunning = _isRunning.load() && _opening.load() == opening;
  std::size_t done = 0;
  // Returns a block as soon as its last frame is taken, so that its recording ends at that point.
  while (_haveBlock(isRunning, before + done) && isRunning && _fits(channels)) {
    SoundCue& cue = *_current->cue;
    Sample* const to = frames + done * samples;
    std::size_t some = std::min(count - done, _current->frames - _position);
    if (cue.fadeFrames.load() != SoundCue::kNoFade) {
      some = _copyFaded(to, some);
    } else {
      copySamples(*_current, _position * samples, some * samples, to);
    }
    _position += some;
    done += some;
    cue.takenFrames.fetch_add(some, std::memory_order_relaxed);
    const bool isFadedOut = _fading == cue.serial && _fadeLeft == 0;
    if (_position < _current->frames && !isFadedOut) break;
    if (_current->endsItem) cue.isTaken.store(true);
    _current->takenAt = before + done;
    _current->takenOpening = opening;
    _return(/*isTaken=*/true);
  }
  _applyVolume(frames, done, samples);
  std::fill_n(frames + done * samples, (count - done) * samples, Sample{});
  if (isRunning && count > 0) _countUnderrun(done, count);
  _framesTaken.store(before + count);
  return done;
}

// What follows the fade is skipped by the caller.
template <typename Sample>
std::size_t RenderLine::_copyFaded(Sample* to, std::size_t most) noexcept {
  const SoundCue& cue = *_current->cue;
  if (_fading != cue.serial) {
    _fading = cue.serial;
    _fadeFrames = _fadeLeft = static_cast<std::size_t>(cue.fadeFrames.load());
  }
  const auto channels = static_cast<std::size_t>(_current->channels);
  const std::size_t some = std::min(most, _fadeLeft);
  copySamples(*_current, _position * channels, some * channels, to);
  for (std::size_t frame = 0; frame < some; ++frame, --_fadeLeft) {
    const float gain = static_cast<float>(_fadeLeft) / static_cast<float>(_fadeFrames);
    for (std::size_t i = 0; i < channels; ++i, ++to) *to = scaled(*to, gain);
  }
  return some;
}

// A change spreads over one period, so that it does not click.
template <typename Sample>
void RenderLine::_applyVolume(Sample* frames, std::size_t count, std::size_t channels) noexcept {
  const float volume = _volume.load(std::memory_order_relaxed);
  const float before = std::exchange(_gain, volume);
  if (count == 0 || (volume == 1 && before == 1)) return;
  const float step = (volume - before) / static_cast<float>(count);
  for (std::size_t frame = 0; frame < count; ++frame) {
    const float gain = before + step * static_cast<float>(frame + 1);
    for (std::size_t i = 0; i < channels; ++i, ++frames) *frames = scaled(*frames, gain);
  }
}

template std::size_t RenderLine::_render(float*, std::size_t, int, std::uint64_t) noexcept;
template std::size_t RenderLine::_render(short*, std::size_t, int, std::uint64_t) noexcept;

// Counts silence where the next recording should have followed at once.
void RenderLine::_countUnderrun(std::size_t done, std::size_t count) noexcept {
  const std::uint32_t generation = _generation.load();
  if (done == 0 && generation != _soundGeneration) _isInSound = false;  // cut off on purpose
  _soundGeneration = generation;
  const bool isOwed = _owed.load() > 0;
  if (done < count && _isInSound && isOwed) _underrunFrames.fetch_add(count - done);
  _isInSound = (done > 0 || _isInSound) && (done == count || isOwed);
}

// Whether _current is a valid block; obsolete ones are returned first. Only a running line lets a
// recording begin.
bool RenderLine::_haveBlock(bool isRunning, std::uint64_t framesTaken) noexcept {
  const std::uint32_t generation = _generation.load();
  for (;;) {
    if (!_current) {
      _current = _sent.take();
      if (!_current) return false;
      _position = 0;
    }
    SoundCue& cue = *_current->cue;
    if (_current->generation == generation && !cue.isRecalled.load()) {
      if (!isRunning || cue.serial <= _begun.load() || _mayBegin(cue, framesTaken)) return true;
      if (!cue.isRecalled.load()) return false;  // is being recalled, or not: the next call sees
    }
    _return(/*isTaken=*/false);
  }
}

// See holdBack.
bool RenderLine::_mayBegin(SoundCue& cue, std::uint64_t framesTaken) noexcept {
  const std::uint64_t before = _begun.exchange(cue.serial);
  if (cue.serial >= _limit.load() || cue.isRecalled.load()) {
    _begun.store(before);
    return false;
  }
  cue.begunAt.store(framesTaken);
  return true;
}

bool RenderLine::_fits(int channels) noexcept {
  if (_current->channels == channels) return true;
  _hasMisfit.store(true);
  return false;
}

void RenderLine::_return(bool isTaken) noexcept {
  _current->isTaken = isTaken;
  _framesPlayed.fetch_add(_current->frames);
  _returned.put(_current);
  _current = nullptr;
}

}  // namespace marlune
