#ifndef MARLUNE_GRAMMAR_MODEL_SLOT_H_
#define MARLUNE_GRAMMAR_MODEL_SLOT_H_

#include <cstddef>
#include <memory>
#include <string>

#include "marlune/grammar/model/slot_run.h"
#include "marlune/platform/value.h"
#include "marlune/util/describable.h"

namespace marlune {

class Cell;
class SlotSequence;

// One element of a pattern or of a phrase. Abstract: its own operations write an error line.
class Slot : public Describable {
 public:
  enum class Kind : unsigned char { other, simple, disjunction, kleene, negation, sequence };

  // What a grammar element becomes: an array by its first element, the marker, a disjunction "+",
  // Kleene slot "*" or negation "~" of the remaining ones; anything else a simple slot. An array
  // with another first element: nullptr, without a message. An empty array: GrammarError, as for
  // whatever is wrong in a nested element.
  static std::shared_ptr<Slot> instanceFromPlist(const Value& plist);

  // Abstract: logs an error and answers nullptr.
  static std::shared_ptr<Slot> initFromPlist(const Value& plist);

  virtual Kind kind() const { return Kind::other; }

  // Whether the slot matches at the start of the target. All but sequences look at the target's
  // first slot alone.
  bool matches(const SlotSequence& target) const;

  // A simple slot answers itself, a compound one a new slot of its kind; nullptr when abstract.
  std::shared_ptr<Slot> reversed() { return _reversed(); }

  std::string description() const override { return ""; }

  // The held cell of a simple slot, nullptr for every other kind.
  virtual const std::shared_ptr<Cell>& _cellOrNull() const;

  // `matches` on the target's slots from `index` on, which may be its count.
  virtual bool _matchesAt(const SlotRun& target, std::size_t index) const;

  // Whether _matchesAt may write a line, so that how often it is asked can be observed.
  virtual bool _writesLines() const { return true; }

 protected:
  Slot() = default;

 private:
  virtual std::shared_ptr<Slot> _reversed() { return nullptr; }
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_SLOT_H_
