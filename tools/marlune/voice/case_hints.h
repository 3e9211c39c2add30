#ifndef MARLUNE_TOOLS_MARLUNE_VOICE_CASE_HINTS_H_
#define MARLUNE_TOOLS_MARLUNE_VOICE_CASE_HINTS_H_

#include <string>

#include "tools/marlune/input/phrase_input.h"

namespace marlune::tool {

// Returns those recording names that differ from one of the words only by case.
Words namesDifferingByCase(const Words& words, const Words& names);

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_VOICE_CASE_HINTS_H_
