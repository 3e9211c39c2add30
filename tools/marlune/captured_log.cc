#include "tools/marlune/captured_log.h"

#include <exception>

#include "marlune/platform/platform.h"

namespace marlune::tool {

CapturedLog::CapturedLog() : _former(Platform::shared().systemLog) {
  Platform::shared().systemLog = _lines;
}

CapturedLog::~CapturedLog() { Platform::shared().systemLog = _former; }

std::vector<std::string> CapturedLog::messages() const {
  std::vector<std::string> messages = lines();
  std::erase_if(messages, [](const std::string& line) {
    return line.starts_with("Prefix! ") || line.starts_with("Suffix! ") ||
           line.starts_with("MATCH!");
  });
  return messages;
}

void CapturedLog::Lines::write(std::string_view message) noexcept {
  try {
    kept.emplace_back(message);
  } catch (const std::exception&) {
    // A line that cannot be kept is lost, like one that cannot be written.
  }
}

}  // namespace marlune::tool
