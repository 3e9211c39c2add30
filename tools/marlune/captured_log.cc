#include "tools/marlune/captured_log.h"

#include <exception>

#include "marlune/platform/platform.h"

namespace marlune::tool {

CapturedLog::CapturedLog() : _former(Platform::shared().systemLog) {
  Platform::shared().systemLog = _lines;
}

CapturedLog::~CapturedLog() { Platform::shared().systemLog = _former; }

void CapturedLog::Lines::write(std::string_view message) noexcept {
  try {
    kept.emplace_back(message);
  } catch (const std::exception&) {
    // A line that cannot be kept is lost, like one that cannot be written.
  }
}

}  // namespace marlune::tool
