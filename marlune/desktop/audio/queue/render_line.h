#ifndef MARLUNE_DESKTOP_AUDIO_QUEUE_RENDER_LINE_H_
#define MARLUNE_DESKTOP_AUDIO_QUEUE_RENDER_LINE_H_

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "marlune/desktop/audio/base/sound_block.h"
#include "marlune/desktop/audio/queue/block_ring.h"

namespace marlune {

// Connects a queue to the callback that takes its sound. Full blocks go down the line and used ones
// come back. The callback only copies samples and uses atomics.
//
// A reopened output may have another format. Each block is made for one opening and is not played
// while the output is in another.
class RenderLine {
 public:
  // How far ahead decoding may run: about 5 s at 48 kHz.
  static constexpr std::size_t kBlocks = 128;

  // Worker. A free block, or null if all are in use; the worker fills it and sends it or gives it
  // back. Blocks that come back from the callback are used up or obsolete.
  SoundBlock* freshBlock();
  void send(SoundBlock* block);
  void giveBack(SoundBlock* block) { _fresh.push_back(block); }
  SoundBlock* takeReturned() { return _returned.take(); }

  // Any thread except the callback's. Sound is taken only while the line is running.
  void setRunning(bool isRunning) { _isRunning.store(isRunning); }
  // Makes every block of an older generation obsolete, including one that is half played.
  void setGeneration(std::uint32_t generation) { _generation.store(generation); }
  // Declares that every block of the current generation has the format of this opening of the
  // output. Call it after setGeneration if earlier blocks do not.
  void setOpening(std::uint64_t opening) {
    _hasMisfit.store(false);
    _opening.store(opening);
  }
  // The number of recordings not yet sent completely. If it is not 0, silence after sound is an
  // underrun.
  void setOwed(std::size_t recordings) { _owed.store(recordings); }

  // Keeps the recordings from this serial on from beginning, until allowAll(). Returns false, and
  // keeps none, if one of them has begun.
  bool holdBack(std::uint64_t serial);
  void allowAll() { _limit.store(kNoLimit); }
  // The last recording that has begun.
  std::uint64_t begun() const { return _begun.load(); }
  // A factor for the samples. Changes gradually.
  void setVolume(float volume) { _volume.store(volume); }

  std::uint64_t framesTaken() const { return _framesTaken.load(); }  // silence included
  // Frames of sound sent and not yet taken. Exact on a thread that both sends and takes.
  std::size_t framesWaiting() const { return _framesSent - _framesPlayed.load(); }
  std::uint64_t underrunFrames() const { return _underrunFrames.load(); }
  // Whether the output takes a different number of channels than the blocks for its opening have.
  // Such blocks are not taken.
  bool hasMisfit() const { return _hasMisfit.load(); }

  // Callback. See AudioSource. `opening` is that of the output.
  std::size_t render(float* frames, std::size_t count, int channels,
                     std::uint64_t opening) noexcept {
    return _render(frames, count, channels, opening);
  }
  std::size_t renderShorts(short* frames, std::size_t count, int channels,
                           std::uint64_t opening) noexcept {
    return _render(frames, count, channels, opening);
  }

 private:
  template <typename Sample>
  std::size_t _render(Sample* frames, std::size_t count, int channels,
                      std::uint64_t opening) noexcept;
  bool _haveBlock(bool isRunning, std::uint64_t framesTaken) noexcept;
  bool _mayBegin(SoundCue& cue, std::uint64_t framesTaken) noexcept;
  bool _fits(int channels) noexcept;
  template <typename Sample>
  std::size_t _copyFaded(Sample* to, std::size_t most) noexcept;
  template <typename Sample>
  void _applyVolume(Sample* frames, std::size_t count, std::size_t channels) noexcept;
  void _return(bool isTaken) noexcept;
  void _countUnderrun(std::size_t done, std::size_t count) noexcept;

  // Used by the worker only.
  std::vector<std::unique_ptr<SoundBlock>> _blocks;
  std::vector<SoundBlock*> _fresh;
  std::size_t _framesSent = 0;

  // Shared.
  BlockRing<kBlocks> _sent;
  BlockRing<kBlocks> _returned;
  std::atomic<bool> _isRunning = false;
  std::atomic<std::uint32_t> _generation = 0;
  std::atomic<std::uint64_t> _opening = 0;
  std::atomic<bool> _hasMisfit = false;
  std::atomic<std::size_t> _owed = 0;
  static constexpr std::uint64_t kNoLimit = ~std::uint64_t{0};
  std::atomic<std::uint64_t> _limit = kNoLimit;
  std::atomic<std::uint64_t> _begun = 0;
  std::atomic<float> _volume = 1;
  std::atomic<std::uint64_t> _framesTaken = 0;
  std::atomic<std::size_t> _framesPlayed = 0;  // or skipped with their block
  std::atomic<std::uint64_t> _underrunFrames = 0;

  // Used by the callback only.
  SoundBlock* _current = nullptr;
  std::size_t _position = 0;  // frames of _current already played
  std::uint64_t _fading = 0;  // the recording that fades, and how it does
  std::size_t _fadeFrames = 0;
  std::size_t _fadeLeft = 0;
  float _gain = 1;                     // the volume that the last frame had
  bool _isInSound = false;             // the last frame was sound, and more should follow
  std::uint32_t _soundGeneration = 0;  // of that sound
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_QUEUE_RENDER_LINE_H_
