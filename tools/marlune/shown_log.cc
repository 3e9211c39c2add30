#include "tools/marlune/shown_log.h"

#include <exception>

#include "tools/marlune/shown_text.h"

namespace marlune::tool {

void ShownLog::write(std::string_view message) noexcept try {
  StandardErrorLog::write(shown(message));
} catch (const std::exception&) {
  // No memory for the line: it is lost.
}

}  // namespace marlune::tool
