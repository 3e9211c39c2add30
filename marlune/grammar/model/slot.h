#ifndef MARLUNE_GRAMMAR_MODEL_SLOT_H_
#define MARLUNE_GRAMMAR_MODEL_SLOT_H_

#include <cstddef>
#include <memory>
#include <string>

#include "marlune/grammar/model/slot_run.h"
#include "marlune/platform/value.h"
#include "marlune/platform/visibility.h"
#include "marlune/util/describable.h"

namespace marlune {

class Cell;
class SlotSequence;

// One element of a pattern or of a phrase. Abstract: its own operations log an error.
class MARLUNE_API Slot : public Describable {
 public:
  enum class Kind : unsigned char { other, simple, disjunction, kleene, negation, sequence };

  // Makes a slot of a grammar element. An array makes a compound slot of its remaining elements, by
  // its first element, the marker: a disjunction "+", Kleene slot "*" or negation "~"; an array
  // with another first element gives nullptr, without a message. Any other value makes a simple
  // slot. Throws GrammarError for an empty array and for errors in a nested element.
  static std::shared_ptr<Slot> instanceFromPlist(const Value& plist);

  // Abstract: logs an error and returns nullptr.
  static std::shared_ptr<Slot> initFromPlist(const Value& plist);

  virtual Kind kind() const { return Kind::other; }

  // Whether the slot matches at the start of the target. Only sequences read more than the target's
  // first slot.
  bool matches(const SlotSequence& target) const;

  // A simple slot returns itself, a compound one a new slot of its kind; nullptr when abstract.
  std::shared_ptr<Slot> reversed() { return _reversed(); }

  std::string description() const override { return ""; }

  // The cell of a simple slot; null for every other kind.
  virtual const std::shared_ptr<Cell>& _cellOrNull() const;

  // `matches` on the target's slots from `index` on; `index` may be the count.
  virtual bool _matchesAt(const SlotRun& target, std::size_t index) const;

  // Whether _matchesAt may write a line, so that the number of calls is observable.
  virtual bool _writesLines() const { return true; }

 protected:
  Slot() = default;

 private:
  virtual std::shared_ptr<Slot> _reversed() { return nullptr; }
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_SLOT_H_
