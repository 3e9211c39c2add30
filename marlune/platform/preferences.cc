#include "marlune/platform/preferences.h"

namespace marlune {

std::uint64_t Preferences::_freshChangeCount() noexcept {
  static std::atomic<std::uint64_t> last{0};
  return last.fetch_add(1, std::memory_order_relaxed) + 1;
}

}  // namespace marlune
