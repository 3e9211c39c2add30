#ifndef MARLUNE_GRAMMAR_MODEL_NEGATION_SLOT_H_
#define MARLUNE_GRAMMAR_MODEL_NEGATION_SLOT_H_

#include <memory>
#include <string>

#include "marlune/grammar/model/compound_slot.h"
#include "marlune/platform/visibility.h"

namespace marlune {

// A slot that matches if none of its members does; with no members it matches anything. In a
// sequence it takes exactly one position. Prints as "~(a + b)".
class MARLUNE_API NegationSlot : public CompoundSlot {
 public:
  // From the array of members, without the marker. Throws GrammarError when a member cannot be
  // read.
  static std::shared_ptr<NegationSlot> initFromPlist(const Value& plist);
  static std::shared_ptr<NegationSlot> instanceFromPlist(const Value& plist);

  static std::shared_ptr<NegationSlot> initWithArray(SlotArray members);
  static std::shared_ptr<NegationSlot> negationSlotWithArray(SlotArray members);

  Kind kind() const override { return Kind::negation; }
  std::string description() const override;

  bool _matchesAt(const SlotRun& target, std::size_t index) const override;
  bool _writesLines() const override;

 protected:
  using CompoundSlot::CompoundSlot;

 private:
  std::shared_ptr<Slot> _withMembers(const SlotSequence& members) const override {
    return initWithArray(members.slots());
  }
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_NEGATION_SLOT_H_
