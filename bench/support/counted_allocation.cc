#include "decompose/counted_allocation.h"

#include <malloc.h>

#include <cstdlib>
#include <new>

namespace {

marlune::AllocationCount count;  // the benchmark has one thread

}  // namespace

// Every allocation of the program comes through here; the other forms call this one.
void* operator new(std::size_t size) {
  void* const memory = std::malloc(size);
  if (!memory) throw std::bad_alloc();
  ++count.calls;
  count.bytesHeld += malloc_usable_size(memory);
  return memory;
}
void operator delete(void* memory) noexcept {
  if (memory) count.bytesHeld -= malloc_usable_size(memory);
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }

namespace marlune {

AllocationCount allocationCount() { return count; }

}  // namespace marlune
