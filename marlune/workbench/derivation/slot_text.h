#ifndef MARLUNE_WORKBENCH_DERIVATION_SLOT_TEXT_H_
#define MARLUNE_WORKBENCH_DERIVATION_SLOT_TEXT_H_

#include <string>

#include "marlune/grammar/model/slot_sequence.h"

namespace marlune {

// A phrase or pattern as the grammar prints it, plus the attributes of each word that the printed
// form omits: "([31:20]){kind=time, seconds=20}". Lists only the first few of many alternatives.
// "(null)" for nullptr.
std::string textOf(const SlotSequence* slots);

}  // namespace marlune

#endif  // MARLUNE_WORKBENCH_DERIVATION_SLOT_TEXT_H_
