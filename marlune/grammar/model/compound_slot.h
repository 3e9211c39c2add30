#ifndef MARLUNE_GRAMMAR_MODEL_COMPOUND_SLOT_H_
#define MARLUNE_GRAMMAR_MODEL_COMPOUND_SLOT_H_

#include <memory>
#include <string>
#include <string_view>

#include "marlune/grammar/model/slot.h"
#include "marlune/grammar/model/slot_sequence.h"
#include "marlune/platform/visibility.h"

namespace marlune {

// A slot that holds a group of slots, in the grammar's order. Abstract: matching, describing and
// reversing log an error and return false, "" and nullptr. Reversed, it is a slot of the same kind
// with the members backwards, themselves reversed.
class MARLUNE_API CompoundSlot : public Slot {
 public:
  std::string description() const override;

  const std::shared_ptr<SlotSequence>& slots() const { return _slots; }  // never null

  bool _matchesAt(const SlotRun& target, std::size_t index) const override;

 protected:
  explicit CompoundSlot(std::shared_ptr<SlotSequence> slots) : _slots(std::move(slots)) {}

  // The members' descriptions, joined with `separator`.
  std::string _joinedDescriptions(std::string_view separator) const;

  // Whether any member matches. Members are tried in order; the first match ends the search.
  bool _anyMemberMatchesAt(const SlotRun& target, std::size_t index) const;
  bool _anyMemberWritesLines() const;

 private:
  std::shared_ptr<Slot> _reversed() override { return _withMembers(*slots()->reversed()); }

  // A new slot of the same kind with these members.
  virtual std::shared_ptr<Slot> _withMembers(const SlotSequence& members) const;

  std::shared_ptr<SlotSequence> _slots;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_COMPOUND_SLOT_H_
