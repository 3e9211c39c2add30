#ifndef MARLUNE_DESKTOP_AUDIO_BLOCK_RING_H_
#define MARLUNE_DESKTOP_AUDIO_BLOCK_RING_H_

#include <array>
#include <atomic>
#include <cstddef>

namespace marlune {

struct SoundBlock;

// Hands blocks from one thread to another without a lock. Has room for every block there is, so
// putting never fails.
template <std::size_t Capacity>
class BlockRing {
 public:
  // By the one thread that puts. REQUIRES: fewer than Capacity blocks inside.
  void put(SoundBlock* block) noexcept {
    const std::size_t end = _end.load(std::memory_order_relaxed);
    _blocks[end % Capacity] = block;
    _end.store(end + 1, std::memory_order_release);
  }

  // By the one thread that takes. Null when there is none.
  SoundBlock* take() noexcept {
    const std::size_t begin = _begin.load(std::memory_order_relaxed);
    if (begin == _end.load(std::memory_order_acquire)) return nullptr;
    SoundBlock* const block = _blocks[begin % Capacity];
    _begin.store(begin + 1, std::memory_order_release);
    return block;
  }

 private:
  std::array<SoundBlock*, Capacity> _blocks = {};
  // Apart, so that the two threads do not share a cache line.
  alignas(64) std::atomic<std::size_t> _begin = 0;
  alignas(64) std::atomic<std::size_t> _end = 0;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_BLOCK_RING_H_
