#ifndef MARLUNE_GRAMMAR_MODEL_KLEENE_SLOT_H_
#define MARLUNE_GRAMMAR_MODEL_KLEENE_SLOT_H_

#include <memory>
#include <string>

#include "marlune/grammar/model/compound_slot.h"

namespace marlune {

// A group that may stand any number of times in its place, none included. Repetition is matched by
// the sequence around it, which never asks this slot: asked itself, as a member of a disjunction or
// negation is, it writes an error line and does not match. Prints as "(a . b)*".
class KleeneSlot : public CompoundSlot {
 public:
  // From the array of members, without the marker. What stops a member from being read is a
  // GrammarError.
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
  std::shared_ptr<Slot> _reversed() override;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_KLEENE_SLOT_H_
