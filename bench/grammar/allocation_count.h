#ifndef MARLUNE_BENCH_GRAMMAR_ALLOCATION_COUNT_H_
#define MARLUNE_BENCH_GRAMMAR_ALLOCATION_COUNT_H_

#include <cstdint>

namespace marlune {

// Allocations of the program so far. Linking its source replaces operator new.
std::uint64_t allocationCount();
// Bytes handed out and not yet taken back, as the allocator counts them.
std::uint64_t allocatedBytes();

}  // namespace marlune

#endif  // MARLUNE_BENCH_GRAMMAR_ALLOCATION_COUNT_H_
