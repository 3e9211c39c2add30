#include "tools/marlune/captured_log.h"

#include <exception>

#include "marlune/platform/platform.h"

namespace marlune::tool {

namespace {

bool isOfComparison(std::string_view line) {
  return line.starts_with("Prefix! ") || line.starts_with("Suffix! ") || line.starts_with("MATCH!");
}

}  // namespace

CapturedLog::CapturedLog(Kept kept)
    : _lines(std::make_shared<Lines>(kept)), _former(Platform::shared().systemLog) {
  Platform::shared().systemLog = _lines;
}

CapturedLog::~CapturedLog() { Platform::shared().systemLog = _former; }

void CapturedLog::Lines::write(std::string_view message) noexcept {
  if (_which == Kept::messages && isOfComparison(message)) return;
  try {
    kept.emplace_back(message);
  } catch (const std::exception&) {
    // A line that cannot be kept is lost, like one that cannot be written.
  }
}

}  // namespace marlune::tool
