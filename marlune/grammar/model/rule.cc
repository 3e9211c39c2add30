#include "marlune/grammar/model/rule.h"

#include <unordered_set>
#include <utility>

#include "marlune/grammar/base/grammar_error.h"
#include "marlune/grammar/base/make_shared_of.h"
#include "marlune/grammar/base/repetition.h"
#include "marlune/grammar/base/special_characters.h"
#include "marlune/grammar/format/production_form.h"
#include "marlune/grammar/format/rule_form.h"
#include "marlune/grammar/model/conditional_production.h"
#include "marlune/grammar/model/context_substitution.h"
#include "marlune/grammar/model/phrase_digest.h"
#include "marlune/grammar/model/rewriting_fault.h"
#include "marlune/util/tq_utils.h"

namespace marlune {

std::shared_ptr<Rule> Rule::initFromPlist(const Value& plist) {
  auto result = makeSharedOf<Rule>();
  const auto& fields = plist.asDictionary();
  if (!fields) return result;

  result->genericSetUpFromPlist(*fields);
  const RuleForm form = RuleForm::of(*fields);
  for (const Value* side : {form.leftHandSide, form.rightHandSide}) {
    if (!side) TQUtils::systemLog("ERROR!");
  }
  result->_leftHandSide = GrammarError::within(SpecialCharacters::lhsKey(), [&form] {
    return SlotsInContext::initFromPlist(form.leftHandSide ? *form.leftHandSide : Value());
  });
  result->_rightHandSide = GrammarError::within(SpecialCharacters::rhsKey(), [&form] {
    return form.rightHandSide ? _productionFromPlist(*form.rightHandSide) : nullptr;
  });
  result->_repeat = form.repeats;
  return result;
}

std::shared_ptr<GenericProduction> Rule::_productionFromPlist(const Value& plist) {
  switch (productionFormOf(plist)) {
    case ProductionForm::newProduction:
      return NewProduction::initFromPlist(plist);
    case ProductionForm::conditional:
      return ConditionalProduction::initFromPlist(plist);
    case ProductionForm::none:
      break;
  }
  return nullptr;
}

std::shared_ptr<Rule> Rule::instanceFromPlist(const Value& plist) { return initFromPlist(plist); }

std::shared_ptr<Rule> Rule::initWithLeftHandSide(
    std::shared_ptr<SlotsInContext> leftHandSide,
    std::shared_ptr<SimpleSlotSequence> rightHandSideOverlays,
    std::shared_ptr<NewProduction::Indices> rightHandSideBaseIndices) {
  return initWithLeftHandSide(std::move(leftHandSide),
                              NewProduction::initWithOverlays(std::move(rightHandSideOverlays),
                                                              std::move(rightHandSideBaseIndices)));
}

std::shared_ptr<Rule> Rule::initWithLeftHandSide(std::shared_ptr<SlotsInContext> leftHandSide,
                                                 std::shared_ptr<GenericProduction> rightHandSide) {
  auto result = makeSharedOf<Rule>();
  result->_leftHandSide = std::move(leftHandSide);
  result->_rightHandSide = std::move(rightHandSide);
  return result;
}

std::shared_ptr<Rule> Rule::ruleWithLeftHandSide(std::shared_ptr<SlotsInContext> leftHandSide,
                                                 std::shared_ptr<GenericProduction> rightHandSide) {
  return initWithLeftHandSide(std::move(leftHandSide), std::move(rightHandSide));
}

std::shared_ptr<SimpleSlotSequence> Rule::appliedTo(const SimpleSlotSequence& phrase) const {
  constexpr std::string_view kTrace = ZKPlistNotificationDefault;
  TQUtils::forDefaultLog(kTrace, " ");
  TQUtils::forDefaultLog(kTrace, "Applying '%@' (%i): %@",
                         name() ? FormatArgument(*name()) : FormatArgument(nullptr), order(),
                         _leftHandSide);
  std::shared_ptr<SimpleSlotSequence> current = phrase._paddedCopy();
  std::unordered_set<PhraseDigest, PhraseDigest::Hash> earlier;
  std::uint64_t steps = 0;
  for (int passes = 1;; ++passes) {
    const std::shared_ptr<SimpleSlotSequence> before = std::move(current);
    ContextSubstitution pass(*before, _leftHandSide.get(), _rightHandSide.get());
    current = pass.result();
    if (pass.isFull()) RewritingFault::setRule(name());
    if (!_repeat) return current;
    // In a repetition, unlike after a single pass, missing blanks are added to the result itself.
    if (before->matches(current->pad()) || pass.isFull()) return current;
    if (passes == 1) earlier.insert(PhraseDigest::of(*before));
    if (!earlier.insert(PhraseDigest::of(*current)).second) {
      TQUtils::log(
          "ERROR: The repeating rule '%@' stopped after %i passes: the phrase came back "
          "to what it had been.",
          name() ? FormatArgument(*name()) : FormatArgument(nullptr), passes);
      _reportStopped();
      return current;
    }
    steps += pass.steps();
    if (passes == Repetition::kMostPasses || steps > Repetition::kMostSteps) {
      TQUtils::log(
          "ERROR: The repeating rule '%@' stopped after %i passes, although each had "
          "changed the phrase.",
          name() ? FormatArgument(*name()) : FormatArgument(nullptr), passes);
      _reportStopped();
      return current;
    }
  }
}

void Rule::_reportStopped() const {
  RewritingFault::report(Failure::Kind::endless,
                         "the repeating rule " + (name() ? *name() : "") + " would not end");
  RewritingFault::setRule(name());
}

std::string Rule::description() const { return GrammarPart::description() + "RULE"; }

}  // namespace marlune
