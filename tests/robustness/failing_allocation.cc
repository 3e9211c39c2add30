#include "robustness/failing_allocation.h"

#include <cstdlib>
#include <new>

namespace {

thread_local bool isArmed = false;
thread_local bool failed = false;
thread_local std::size_t left = 0;

}  // namespace

// The linker redirects every call of malloc from the program's own objects, including calls through
// Expat's memory functions, to __wrap_malloc, and __real_malloc to malloc.
extern "C" void* __real_malloc(std::size_t size);
extern "C" void* __wrap_malloc(std::size_t size) {
  if (isArmed && left-- == 0) {
    isArmed = false;
    failed = true;
    return nullptr;
  }
  return __real_malloc(size);
}

// Every other allocation passes through here; the other forms call this one.
void* operator new(std::size_t size) {
  if (void* const memory = __wrap_malloc(size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace marlune {

FailingAllocation::FailingAllocation(std::size_t number) {
  left = number;
  failed = false;
  isArmed = true;
}

FailingAllocation::~FailingAllocation() { isArmed = false; }

bool FailingAllocation::hasFailed() const { return failed; }

}  // namespace marlune
