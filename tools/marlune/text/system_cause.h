#ifndef MARLUNE_TOOLS_MARLUNE_TEXT_SYSTEM_CAUSE_H_
#define MARLUNE_TOOLS_MARLUNE_TEXT_SYSTEM_CAUSE_H_

#include <string>

namespace marlune::tool {

// The meaning of an errno as part of a sentence: "no space left on device".
std::string systemCause(int error);

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_TEXT_SYSTEM_CAUSE_H_
