#ifndef MARLUNE_TESTS_ROBUSTNESS_FAILING_ALLOCATION_H_
#define MARLUNE_TESTS_ROBUSTNESS_FAILING_ALLOCATION_H_

#include <cstddef>

namespace marlune {

// While one stands, the allocation of its number on this thread, counted from 0, fails: operator
// new throws std::bad_alloc, malloc returns nullptr. Linking its source replaces operator new;
// malloc needs the linker's option --wrap=malloc.
class FailingAllocation {
 public:
  explicit FailingAllocation(std::size_t number);
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;

  // Whether it came to that.
  bool hasFailed() const;
};

}  // namespace marlune

#endif  // MARLUNE_TESTS_ROBUSTNESS_FAILING_ALLOCATION_H_
