#include "tools/marlune/streams/shown_log.h"

#include <exception>

#include "tools/marlune/text/shown_text.h"

namespace marlune::tool {

void ShownLog::write(std::string_view message) noexcept try {
  StandardErrorLog::write(shown(message));
} catch (const std::exception&) {
  // Out of memory: the line is lost.
}

}  // namespace marlune::tool
