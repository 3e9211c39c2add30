#include "marlune/desktop/plist/expat_memory.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace marlune {

namespace {

// The library's hooks have no argument of ours to find it by.
thread_local MemoryBudget* budgetInUse = nullptr;

bool isGranted(std::size_t bytes) { return !budgetInUse || budgetInUse->tryTake(bytes); }

void giveBack(std::size_t bytes) {
  if (budgetInUse) budgetInUse->giveBack(bytes);
}

// The allocator may give a little more than was asked for. What was taken must be what is given
// back later, so it is the block's own size; a budget that cannot bear the rest is at its end.
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

// Always a new block: one that was not granted must leave the old one as it was.
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
