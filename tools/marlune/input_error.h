#ifndef MARLUNE_TOOLS_MARLUNE_INPUT_ERROR_H_
#define MARLUNE_TOOLS_MARLUNE_INPUT_ERROR_H_

#include <stdexcept>

namespace marlune::tool {

// Something that a command needs cannot be read or makes no sense: the run ends with this one
// sentence, which names the file or folder.
class InputError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_INPUT_ERROR_H_
