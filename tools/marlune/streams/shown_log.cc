#include "tools/marlune/streams/shown_log.h"

#include <exception>

#include "tools/marlune/streams/answers.h"
#include "tools/marlune/text/shown_text.h"

namespace marlune::tool {

void ShownLog::write(std::string_view message) noexcept try {
  flushAnswersBeforeMessage();
  StandardErrorLog::write(shown(message));
} catch (const std::exception&) {
  // Out of memory: the line is lost.
}

}  // namespace marlune::tool
