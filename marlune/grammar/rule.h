#ifndef MARLUNE_GRAMMAR_RULE_H_
#define MARLUNE_GRAMMAR_RULE_H_

#include <cstddef>
#include <memory>
#include <string>

#include "marlune/grammar/generic_production.h"
#include "marlune/grammar/grammar_part.h"
#include "marlune/grammar/new_production.h"
#include "marlune/grammar/slots_in_context.h"

namespace marlune {

// A leaf of the grammar: rewrites every occurrence of its left-hand side, once or, when it repeats,
// pass after pass until one changes nothing.
class Rule : public GrammarPart {
 public:
  // How many passes a repeating rule may take, and how much work they may be. A pattern with
  // repetitions looks, from each slot, at all behind it, so the work of a pass is taken to be the
  // square of the phrase's slots. Patterns that write lines are matched step by step, so a pass of
  // theirs is at least as much as the steps they may take.
  static constexpr int kMostPasses = 10000;
  static constexpr std::size_t kMostWork = 10000000;

  // From a dictionary with "_lhs", "_rhs" (an array: a NewProduction, a dictionary: a
  // ConditionalProduction, anything else: none) and perhaps "_repeat", read as an integer. A
  // missing side is told straight to the system log. From anything else: a rule with nothing set.
  // GrammarError when a side cannot be read.
  static std::shared_ptr<Rule> initFromPlist(const Value& plist);
  static std::shared_ptr<Rule> instanceFromPlist(const Value& plist);

  // Made by hand: order and depth 0, no name, no repetition. Everything is shared.
  static std::shared_ptr<Rule> initWithLeftHandSide(
      std::shared_ptr<SlotsInContext> leftHandSide,
      std::shared_ptr<SimpleSlotSequence> rightHandSideOverlays,
      std::shared_ptr<NewProduction::Indices> rightHandSideBaseIndices);
  static std::shared_ptr<Rule> initWithLeftHandSide(
      std::shared_ptr<SlotsInContext> leftHandSide,
      std::shared_ptr<GenericProduction> rightHandSide);
  static std::shared_ptr<Rule> ruleWithLeftHandSide(
      std::shared_ptr<SlotsInContext> leftHandSide,
      std::shared_ptr<GenericProduction> rightHandSide);

  Kind kind() const override { return Kind::rule; }

  // The result of the last pass. A repeating rule stops when the phrase before a pass, taken as a
  // pattern, matches the phrase after it; a pass that only adds attributes is thus no change. One
  // that would never stop is stopped, with an unconditional line, as soon as the phrase is one
  // that it has been before, kMostPasses have run or the next one would be more than kMostWork
  // with those before, and answers the phrase as it stands.
  std::shared_ptr<SimpleSlotSequence> appliedTo(const SimpleSlotSequence& phrase) const override;

  std::string description() const override;

  const std::shared_ptr<SlotsInContext>& leftHandSide() const { return _leftHandSide; }
  const std::shared_ptr<GenericProduction>& rightHandSide() const { return _rightHandSide; }
  bool repeat() const { return _repeat; }

 protected:
  Rule() = default;

 private:
  static std::shared_ptr<GenericProduction> _productionFromPlist(const Value& plist);
  std::size_t _workOfPassOver(const SlotSequence& phrase) const;

  std::shared_ptr<SlotsInContext> _leftHandSide;
  std::shared_ptr<GenericProduction> _rightHandSide;
  bool _repeat = false;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_RULE_H_
