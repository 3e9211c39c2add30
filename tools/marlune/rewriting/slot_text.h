#ifndef MARLUNE_TOOLS_MARLUNE_REWRITING_SLOT_TEXT_H_
#define MARLUNE_TOOLS_MARLUNE_REWRITING_SLOT_TEXT_H_

#include <string>

#include "marlune/grammar/model/slot_sequence.h"

namespace marlune::tool {

// A phrase or pattern as the grammar prints it, plus the attributes of each word that the printed
// form omits: "([31:20]){kind=time, seconds=20}". Lists only the first few of many alternatives.
// "(null)" for nullptr.
std::string textOf(const SlotSequence* slots);

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_REWRITING_SLOT_TEXT_H_
