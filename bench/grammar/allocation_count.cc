#include "grammar/allocation_count.h"

#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::uint64_t> allocations{0};

}  // namespace

// Every allocation of the program comes through here; the other forms call this one.
void* operator new(std::size_t size) {
  allocations.fetch_add(1, std::memory_order_relaxed);
  if (void* const memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace marlune {

std::uint64_t allocationCount() { return allocations.load(std::memory_order_relaxed); }

std::uint64_t allocatedBytes() { return ::mallinfo2().uordblks; }

}  // namespace marlune
