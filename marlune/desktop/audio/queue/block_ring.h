#ifndef MARLUNE_DESKTOP_AUDIO_QUEUE_BLOCK_RING_H_
#define MARLUNE_DESKTOP_AUDIO_QUEUE_BLOCK_RING_H_

#include <array>
#include <atomic>
#include <cstddef>

namespace marlune {

struct SoundBlock;

// Passes blocks from one thread to another without a lock. Capacity covers every existing block, so
// put never fails.
template <std::size_t Capacity>
class BlockRing {
 public:
  // Producer thread only. REQUIRES: fewer than Capacity blocks in the ring.
  void put(SoundBlock* block) noexcept {
    const std::size_t end = _end.load(std::memory_order_relaxed);
    _blocks[end % Capacity] = block;
    _end.store(end + 1, std::memory_order_release);
  }

  // Consumer thread only. Null if the ring is empty.
  SoundBlock* take() noexcept {
    const std::size_t begin = _begin.load(std::memory_order_relaxed);
    if (begin == _end.load(std::memory_order_acquire)) return nullptr;
    SoundBlock* const block = _blocks[begin % Capacity];
    _begin.store(begin + 1, std::memory_order_release);
    return block;
  }

 private:
  std::array<SoundBlock*, Capacity> _blocks = {};
  // On separate cache lines, to avoid false sharing between the two threads.
  alignas(64) std::atomic<std::size_t> _begin = 0;
  alignas(64) std::atomic<std::size_t> _end = 0;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_QUEUE_BLOCK_RING_H_
