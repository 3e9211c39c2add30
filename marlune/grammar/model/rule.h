#ifndef MARLUNE_GRAMMAR_MODEL_RULE_H_
#define MARLUNE_GRAMMAR_MODEL_RULE_H_

#include <cstdint>
#include <memory>
#include <string>

#include "marlune/grammar/model/generic_production.h"
#include "marlune/grammar/model/grammar_part.h"
#include "marlune/grammar/model/new_production.h"
#include "marlune/grammar/model/slots_in_context.h"

namespace marlune {

// A leaf of the grammar: rewrites every occurrence of its left-hand side, once or, when it repeats,
// pass after pass until one changes nothing.
class Rule : public GrammarPart {
 public:
  // How many passes a repeating rule may take, and how much work they may be, in the steps of
  // ContextSubstitution::steps, about 10 ns each: 1,000 passes over 1,000 words take 20 million
  // and the comparisons that they need.
  static constexpr int kMostPasses = 10000;
  static constexpr std::uint64_t kMostSteps = 300000000;

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
  // that it has been before, kMostPasses have run or those so far took more than kMostSteps, and
  // answers the phrase as it stands. It stops, too, when the phrase would grow too long.
  std::shared_ptr<SimpleSlotSequence> appliedTo(const SimpleSlotSequence& phrase) const override;

  std::string description() const override;

  const std::shared_ptr<SlotsInContext>& leftHandSide() const { return _leftHandSide; }
  const std::shared_ptr<GenericProduction>& rightHandSide() const { return _rightHandSide; }
  bool repeat() const { return _repeat; }

 protected:
  Rule() = default;

 private:
  static std::shared_ptr<GenericProduction> _productionFromPlist(const Value& plist);

  std::shared_ptr<SlotsInContext> _leftHandSide;
  std::shared_ptr<GenericProduction> _rightHandSide;
  bool _repeat = false;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_RULE_H_
