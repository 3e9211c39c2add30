#include "tools/marlune/text/system_cause.h"

#include <system_error>

namespace marlune::tool {

std::string systemCause(int error) {
  std::string cause = std::generic_category().message(error);
  const bool isWord = cause.size() > 1 && cause[1] >= 'a' && cause[1] <= 'z';
  if (isWord && cause[0] >= 'A' && cause[0] <= 'Z') cause[0] = static_cast<char>(cause[0] + 32);
  return cause;
}

}  // namespace marlune::tool
