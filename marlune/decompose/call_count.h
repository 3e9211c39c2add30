#ifndef MARLUNE_DECOMPOSE_CALL_COUNT_H_
#define MARLUNE_DECOMPOSE_CALL_COUNT_H_

#include <cstddef>
#include <cstdint>

namespace marlune {

// The worker calls of one decomposer so far, as the plain recursion over all splits would make
// them. Wraps around.
class CallCount {
 public:
  // Adds `calls`. If traced, logs one line with the new count.
  void add(std::size_t calls);

  std::int32_t count() const { return static_cast<std::int32_t>(_count); }

  bool isTraced() const { return _isTraced; }
  void setTraced(bool isTraced) { _isTraced = isTraced; }

 private:
  std::uint32_t _count = 0;
  bool _isTraced = false;
};

}  // namespace marlune

#endif  // MARLUNE_DECOMPOSE_CALL_COUNT_H_
