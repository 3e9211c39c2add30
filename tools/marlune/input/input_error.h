#ifndef MARLUNE_TOOLS_MARLUNE_INPUT_INPUT_ERROR_H_
#define MARLUNE_TOOLS_MARLUNE_INPUT_INPUT_ERROR_H_

#include <stdexcept>

namespace marlune::tool {

// An input of the command cannot be read or is invalid. The run ends with this message, one
// sentence that names the file or folder.
class InputError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_INPUT_INPUT_ERROR_H_
