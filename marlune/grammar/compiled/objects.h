#ifndef MARLUNE_GRAMMAR_COMPILED_OBJECTS_H_
#define MARLUNE_GRAMMAR_COMPILED_OBJECTS_H_

#include <memory>
#include <vector>

#include "marlune/grammar/compiled/phrase.h"
#include "marlune/grammar/model/simple_slot.h"
#include "marlune/grammar/model/slot_run.h"

namespace marlune {

// The slot objects that the slots of a compiled phrase stand for: those that it was read from, and
// those made of it. A slot that no rule touched comes out as the very object that went in.
class CompiledObjects {
 public:
  // Makes `phrase` hold what the objects hold. False when something in them has no compiled form;
  // the phrase is then of no use.
  bool read(const SlotArray& objects, CompiledPhrase& phrase);

  // The phrase's slots as objects.
  SlotArray write(const CompiledPhrase& phrase);

 private:
  static bool _read(const Cell& cell, CompiledPhrase& phrase, CompiledPhrase::Slot& slot);
  static std::shared_ptr<SimpleSlot> _made(const CompiledPhrase& phrase,
                                           const CompiledPhrase::Slot& slot);
  std::shared_ptr<Slot>& _objectOf(const CompiledPhrase::Slot& slot);  // null when there is none

  std::vector<std::shared_ptr<Slot>> _byIdentity;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_COMPILED_OBJECTS_H_
