#include "robustness/failing_allocation.h"

#include <cstdlib>
#include <new>

namespace {

thread_local bool isArmed = false;
thread_local bool failed = false;
thread_local std::size_t left = 0;

}  // namespace

// Every allocation of the program comes through here; the other forms call this one.
void* operator new(std::size_t size) {
  if (isArmed && left-- == 0) {
    isArmed = false;
    failed = true;
    throw std::bad_alloc();
  }
  if (void* const memory = std::malloc(size)) return memory;
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
