#include "marlune/grammar/compiled/result.h"

#include "marlune/grammar/compiled/objects.h"

namespace marlune {

SlotArray CompiledResult::slots() const { return CompiledObjects().write(_phrase); }

std::vector<std::string> CompiledResult::stringArray() const {
  std::vector<std::string> strings;
  strings.reserve(_phrase.slots().size());
  for (const CompiledPhrase::Slot& slot : _phrase.slots()) {
    if (slot.type == CellTypeLiteral && slot.content != Vocabulary::kAbsent) {
      strings.emplace_back(_phrase.text(slot.content));
    }
  }
  return strings;
}

}  // namespace marlune
