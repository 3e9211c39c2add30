#ifndef MARLUNE_GRAMMAR_COMPILED_OBJECTS_H_
#define MARLUNE_GRAMMAR_COMPILED_OBJECTS_H_

#include <memory>
#include <vector>

#include "marlune/grammar/compiled/phrase.h"
#include "marlune/grammar/model/simple_slot.h"
#include "marlune/grammar/model/slot_run.h"

namespace marlune {

// Maps the slots of a compiled phrase to slot objects: those it was read from, and those created
// for it. A slot that no rule changed maps to its original object.
class CompiledObjects {
 public:
  // Reads the objects into `phrase`. Returns false when one of them has no compiled form; the
  // phrase must not be used then.
  bool read(const SlotArray& objects, CompiledPhrase& phrase);

  // The phrase's slots as objects.
  SlotArray write(const CompiledPhrase& phrase);

 private:
  static bool _read(const Cell& cell, CompiledPhrase& phrase, CompiledPhrase::Slot& slot);
  static std::shared_ptr<SimpleSlot> _made(const CompiledPhrase& phrase,
                                           const CompiledPhrase::Slot& slot);
  std::shared_ptr<Slot>& _objectOf(const CompiledPhrase::Slot& slot);  // nullptr when there is none

  std::vector<std::shared_ptr<Slot>> _byIdentity;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_COMPILED_OBJECTS_H_
