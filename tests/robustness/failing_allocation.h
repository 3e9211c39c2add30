#ifndef MARLUNE_TESTS_ROBUSTNESS_FAILING_ALLOCATION_H_
#define MARLUNE_TESTS_ROBUSTNESS_FAILING_ALLOCATION_H_

#include <cstddef>

namespace marlune {

// While one stands, the allocation of its number on this thread, counted from 0, throws
// std::bad_alloc. Linking its source replaces operator new.
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
