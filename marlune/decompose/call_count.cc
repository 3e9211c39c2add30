#include "marlune/decompose/call_count.h"

#include "marlune/util/tq_utils.h"

namespace marlune {

void CallCount::add(std::size_t calls) {
  _count += static_cast<std::uint32_t>(calls);
  if (_isTraced) {
    TQUtils::forDefaultLog(ZKPlistNotificationDefault, "Iterations so far: %i", count());
  }
}

}  // namespace marlune
