#ifndef MARLUNE_TESTS_ROBUSTNESS_FAILING_ALLOCATION_H_
#define MARLUNE_TESTS_ROBUSTNESS_FAILING_ALLOCATION_H_

#include <cstddef>

namespace marlune {

// While one exists, the allocation with this number on this thread, counted from 0, fails: operator
// new throws std::bad_alloc, malloc returns nullptr. Linking the source replaces operator new;
// malloc needs the linker option --wrap=malloc.
class FailingAllocation {
 public:
  explicit FailingAllocation(std::size_t number);
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;

  // Whether that allocation was reached.
  bool hasFailed() const;
};

}  // namespace marlune

#endif  // MARLUNE_TESTS_ROBUSTNESS_FAILING_ALLOCATION_H_
