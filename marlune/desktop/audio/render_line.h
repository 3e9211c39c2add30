#ifndef MARLUNE_DESKTOP_AUDIO_RENDER_LINE_H_
#define MARLUNE_DESKTOP_AUDIO_RENDER_LINE_H_

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "marlune/desktop/audio/block_ring.h"
#include "marlune/desktop/audio/sound_block.h"

namespace marlune {

// What lies between a queue and the callback that takes its sound: blocks go down the line full
// and come back used. The callback's side only copies samples and moves atomics.
//
// An output that is closed and opened again may have another format. Blocks are made for one
// opening, and stay where they are while the output is in another.
class RenderLine {
 public:
  // How far decoding may run ahead: about 5 s at 48 kHz.
  static constexpr std::size_t kBlocks = 128;

  // The worker's side. A fresh block, or null while all are under way; the worker fills it and
  // sends it or gives it back. A block that returns from the callback is used up or unwanted.
  SoundBlock* freshBlock();
  void send(SoundBlock* block);
  void giveBack(SoundBlock* block) { _fresh.push_back(block); }
  SoundBlock* takeReturned() { return _returned.take(); }

  // Any thread but the callback's. Sound is taken only while the line runs.
  void setRunning(bool isRunning) { _isRunning.store(isRunning); }
  // From now on every block of an older generation is unwanted, also one that is half played.
  void setGeneration(std::uint32_t generation) { _generation.store(generation); }
  // From now on every block of the generation is in the format of this opening of the output. After
  // setGeneration, if earlier ones are not.
  void setOpening(std::uint64_t opening) {
    _hasMisfit.store(false);
    _opening.store(opening);
  }
  // How many recordings are still to be sent to their end. While there are any, silence in the
  // middle of sound is an underrun.
  void setOwed(std::size_t recordings) { _owed.store(recordings); }

  std::uint64_t framesTaken() const { return _framesTaken.load(); }  // silence included
  // Frames of sound sent and not taken. Exact on the thread that both sends and takes.
  std::size_t framesWaiting() const { return _framesSent - _framesPlayed.load(); }
  std::uint64_t underrunFrames() const { return _underrunFrames.load(); }
  // Whether the output takes another number of channels than blocks for its opening have. Such
  // blocks are not taken.
  bool hasMisfit() const { return _hasMisfit.load(); }

  // The callback's side; see AudioSource. `opening` is that of the output.
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
  bool _haveBlock() noexcept;
  bool _fits(int channels) noexcept;
  void _return(bool isTaken) noexcept;
  void _countUnderrun(std::size_t done, std::size_t count) noexcept;

  // The worker's.
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
  std::atomic<std::uint64_t> _framesTaken = 0;
  std::atomic<std::size_t> _framesPlayed = 0;  // or skipped with their block
  std::atomic<std::uint64_t> _underrunFrames = 0;

  // The callback's.
  SoundBlock* _current = nullptr;
  std::size_t _position = 0;           // frames of _current that are played
  bool _isInSound = false;             // the last frame was sound, and more was to follow
  std::uint32_t _soundGeneration = 0;  // of that sound
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_RENDER_LINE_H_
