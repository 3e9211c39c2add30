#include "marlune/desktop/plist/expat_memory.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace marlune {

namespace {

// Expat's memory functions have no user argument.
thread_local MemoryBudget* budgetInUse = nullptr;

bool isGranted(std::size_t bytes) { return !budgetInUse || budgetInUse->tryTake(bytes); }

void giveBack(std::size_t bytes) {
  if (budgetInUse) budgetInUse->giveBack(bytes);
}

// The allocator may return a larger block than requested. Uses the block's real size, so that
// freeing it returns the same amount. If the budget cannot cover the excess, it is exhausted.
void* counted(void* block) {
  if (block && !isGranted(malloc_usable_size(block))) {
    std::free(block);
    return nullptr;
  }
  return block;
}

void* allocate(std::size_t bytes) { return counted(std::malloc(bytes)); }

void release(void* block) {
  giveBack(malloc_usable_size(block));
  std::free(block);
}

// Always allocates a new block: if the request is refused, the old block must stay unchanged.
void* reallocate(void* block, std::size_t bytes) {
  void* larger = allocate(bytes);
  if (!larger || !block) return larger;
  std::memcpy(larger, block, std::min(malloc_usable_size(block), bytes));
  release(block);
  return larger;
}

constexpr XML_Memory_Handling_Suite kSuite{allocate, reallocate, release};

}  // namespace

const XML_Memory_Handling_Suite& ExpatMemory::suite() { return kSuite; }

ExpatMemory::Scope::Scope(MemoryBudget& budget) : _former(std::exchange(budgetInUse, &budget)) {}
ExpatMemory::Scope::~Scope() { budgetInUse = _former; }

}  // namespace marlune
