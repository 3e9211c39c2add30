#ifndef MARLUNE_BENCH_SUPPORT_COUNTED_ALLOCATION_H_
#define MARLUNE_BENCH_SUPPORT_COUNTED_ALLOCATION_H_

#include <cstdint>

namespace marlune {

// The program's allocations so far: the number of calls, and the bytes held now, as the allocator
// rounds them.
struct AllocationCount {
  std::uint64_t calls = 0;
  std::uint64_t bytesHeld = 0;
};
AllocationCount allocationCount();

}  // namespace marlune

#endif  // MARLUNE_BENCH_SUPPORT_COUNTED_ALLOCATION_H_
