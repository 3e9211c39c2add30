#include "marlune/platform/standard_error_log.h"

#include <unistd.h>

#include <exception>
#include <string>

#include "marlune/platform/quiet_write.h"

namespace marlune {

void StandardErrorLog::write(std::string_view message) noexcept try {
  std::string line;
  line.reserve(message.size() + 1);
  line.append(message).append(1, '\n');
  std::string_view rest = line;
  while (!rest.empty()) {
    const ssize_t written = quietWrite(STDERR_FILENO, rest);
    if (written <= 0) return;
    rest.remove_prefix(static_cast<std::size_t>(written));
  }
} catch (const std::exception&) {
  // Out of memory: the line is lost.
}

}  // namespace marlune
