#ifndef MARLUNE_GRAMMAR_MODEL_RULE_H_
#define MARLUNE_GRAMMAR_MODEL_RULE_H_

#include <memory>
#include <string>

#include "marlune/grammar/model/generic_production.h"
#include "marlune/grammar/model/grammar_part.h"
#include "marlune/grammar/model/new_production.h"
#include "marlune/grammar/model/slots_in_context.h"
#include "marlune/platform/visibility.h"

namespace marlune {

// A leaf of the grammar: rewrites every occurrence of its left-hand side, once or, if it repeats,
// pass after pass until a pass changes nothing.
class MARLUNE_API Rule : public GrammarPart {
 public:
  // From a dictionary with "_lhs", "_rhs" (an array gives a NewProduction, a dictionary a
  // ConditionalProduction, anything else none) and optionally "_repeat", read as an integer. A
  // missing side is logged straight to the system log. From anything else: a rule with nothing set.
  // Throws GrammarError when a side cannot be read.
  static std::shared_ptr<Rule> initFromPlist(const Value& plist);
  static std::shared_ptr<Rule> instanceFromPlist(const Value& plist);

  // A rule without a file: order and depth 0, no name, no repetition. Shares its arguments.
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
  // pattern, matches the phrase after it, so a pass that only adds attributes counts as no change.
  // A rule that would never stop is stopped, with an unconditional line, as soon as the phrase
  // equals an earlier one, 10,000 passes have run or they took about 2.5 seconds of a desktop; the
  // result is the phrase at that point. The rule also stops when the phrase would grow too long.
  std::shared_ptr<SimpleSlotSequence> appliedTo(const SimpleSlotSequence& phrase) const override;

  std::string description() const override;

  const std::shared_ptr<SlotsInContext>& leftHandSide() const { return _leftHandSide; }
  const std::shared_ptr<GenericProduction>& rightHandSide() const { return _rightHandSide; }
  bool repeat() const { return _repeat; }

 protected:
  Rule() = default;

 private:
  static std::shared_ptr<GenericProduction> _productionFromPlist(const Value& plist);
  void _reportStopped() const;

  std::shared_ptr<SlotsInContext> _leftHandSide;
  std::shared_ptr<GenericProduction> _rightHandSide;
  bool _repeat = false;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_RULE_H_
