#include "marlune/desktop/audio/queue/render_line.h"

#include <algorithm>

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

}  // namespace

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
  while (_haveBlock() && isRunning && _fits(channels)) {
    const std::size_t some = std::min(count - done, _current->frames - _position);
    copySamples(*_current, _position * samples, some * samples, frames + done * samples);
    _position += some;
    done += some;
    if (_position < _current->frames) break;
    _current->takenAt = before + done;
    _current->takenOpening = opening;
    _return(/*isTaken=*/true);
  }
  std::fill_n(frames + done * samples, (count - done) * samples, Sample{});
  if (isRunning && count > 0) _countUnderrun(done, count);
  _framesTaken.store(before + count);
  return done;
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

// Whether _current is a valid block; obsolete ones are returned first.
bool RenderLine::_haveBlock() noexcept {
  const std::uint32_t generation = _generation.load();
  for (;;) {
    if (!_current) {
      _current = _sent.take();
      if (!_current) return false;
      _position = 0;
    }
    if (_current->generation == generation) return true;
    _return(/*isTaken=*/false);
  }
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
