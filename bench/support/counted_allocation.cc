#include "support/counted_allocation.h"

#include <malloc.h>

#include <cstdlib>
#include <new>

namespace {

marlune::AllocationCount count;  // benchmarks are single-threaded

// Includes the allocator's header word.
std::size_t heldBy(void* memory) { return malloc_usable_size(memory) + sizeof(std::size_t); }

}  // namespace

// Every allocation of the program goes through this function; the other forms call it.
void* operator new(std::size_t size) {
  void* const memory = std::malloc(size);
  if (!memory) throw std::bad_alloc();
  ++count.calls;
  count.bytesHeld += heldBy(memory);
  return memory;
}
void operator delete(void* memory) noexcept {
  if (memory) count.bytesHeld -= heldBy(memory);
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }

namespace marlune {

AllocationCount allocationCount() { return count; }

}  // namespace marlune
