#include "marlune/workbench/derivation/captured_log.h"

#include <exception>

namespace marlune {

std::vector<std::string> CapturedLog::lines() const {
  std::vector<std::string> lines = _lines.kept;
  if (_lines.left > 0) {
    lines.push_back("... and " + std::to_string(_lines.left) + " more lines");
  }
  return lines;
}

void CapturedLog::Lines::write(std::string_view message) noexcept {
  try {
    if (kept.size() < kMostLines) {
      kept.emplace_back(message);
    } else {
      ++left;
    }
  } catch (const std::exception&) {
    // Out of memory: the line is lost.
  }
}

}  // namespace marlune
