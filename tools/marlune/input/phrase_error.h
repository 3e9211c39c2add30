#ifndef MARLUNE_TOOLS_MARLUNE_INPUT_PHRASE_ERROR_H_
#define MARLUNE_TOOLS_MARLUNE_INPUT_PHRASE_ERROR_H_

#include <stdexcept>

namespace marlune::tool {

// Why one phrase cannot be rewritten or said, as a clause; the run goes on with the next.
class PhraseError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_INPUT_PHRASE_ERROR_H_
