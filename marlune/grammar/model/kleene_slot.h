#ifndef MARLUNE_GRAMMAR_MODEL_KLEENE_SLOT_H_
#define MARLUNE_GRAMMAR_MODEL_KLEENE_SLOT_H_

#include <memory>
#include <string>

#include "marlune/grammar/model/compound_slot.h"
#include "marlune/platform/visibility.h"

namespace marlune {

// A group that may occur any number of times in its place, including zero. The enclosing sequence
// matches the repetition and never calls this slot's own `matches`. If called, as for a member of a
// disjunction or negation, it logs an error and does not match. Prints as "(a . b)*".
class MARLUNE_API KleeneSlot : public CompoundSlot {
 public:
  // From the array of members, without the marker. Throws GrammarError when a member cannot be
  // read.
  static std::shared_ptr<KleeneSlot> initFromPlist(const Value& plist);
  static std::shared_ptr<KleeneSlot> instanceFromPlist(const Value& plist);

  static std::shared_ptr<KleeneSlot> initWithArray(SlotArray members);
  static std::shared_ptr<KleeneSlot> kleeneSlotWithArray(SlotArray members);

  Kind kind() const override { return Kind::kleene; }
  std::string description() const override;

  bool _matchesAt(const SlotRun& target, std::size_t index) const override;

 protected:
  using CompoundSlot::CompoundSlot;

 private:
  std::shared_ptr<Slot> _withMembers(const SlotSequence& members) const override {
    return initWithArray(members.slots());
  }
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_KLEENE_SLOT_H_
