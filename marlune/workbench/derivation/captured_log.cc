#include "marlune/workbench/derivation/captured_log.h"

#include <exception>

#include "marlune/platform/platform.h"

namespace marlune {

namespace {

// A comparison with a prefix key logs one line, and a second one if it matches. Suffix keys log
// none.
bool isOfComparison(std::string_view line) {
  return line.starts_with("Prefix! ") || line.starts_with("MATCH!");
}

}  // namespace

CapturedLog::CapturedLog(Kept kept)
    : _lines(std::make_shared<Lines>(kept)), _former(Platform::shared().systemLog) {
  Platform::shared().systemLog = _lines;
}

CapturedLog::~CapturedLog() { Platform::shared().systemLog = _former; }

std::vector<std::string> CapturedLog::lines() const {
  std::vector<std::string> lines = _lines->kept;
  if (_lines->left > 0) {
    lines.push_back("... and " + std::to_string(_lines->left) + " more lines");
  }
  return lines;
}

void CapturedLog::Lines::write(std::string_view message) noexcept {
  if (_which == Kept::messages && isOfComparison(message)) return;
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
