#include "marlune/grammar/model/rule.h"

#include <unordered_set>

#include "marlune/grammar/base/grammar_error.h"
#include "marlune/grammar/base/make_shared_of.h"
#include "marlune/grammar/base/special_characters.h"
#include "marlune/grammar/model/conditional_production.h"
#include "marlune/grammar/model/context_substitution.h"
#include "marlune/grammar/model/phrase_digest.h"
#include "marlune/util/tq_utils.h"

namespace marlune {

namespace {

std::shared_ptr<SimpleSlotSequence> paddedCopy(const SimpleSlotSequence& phrase) {
  auto copy = SimpleSlotSequence::slotSequenceWithArray(phrase.slots());
  copy->pad();
  return copy;
}

}  // namespace

std::shared_ptr<Rule> Rule::initFromPlist(const Value& plist) {
  auto result = makeSharedOf<Rule>();
  const auto& fields = plist.asDictionary();
  if (!fields) return result;

  result->genericSetUpFromPlist(*fields);
  for (const std::string* side : {&SpecialCharacters::lhsKey(), &SpecialCharacters::rhsKey()}) {
    if (!fields->contains(*side)) TQUtils::systemLog("ERROR!");
  }
  result->_leftHandSide = GrammarError::within(SpecialCharacters::lhsKey(), [&fields] {
    return SlotsInContext::initFromPlist(fields->valueForKey(SpecialCharacters::lhsKey()));
  });
  result->_rightHandSide = GrammarError::within(SpecialCharacters::rhsKey(), [&fields] {
    return _productionFromPlist(fields->valueForKey(SpecialCharacters::rhsKey()));
  });
  result->_repeat = fields->valueForKey(SpecialCharacters::repeatKey()).integerValue() != 0;
  return result;
}

std::shared_ptr<GenericProduction> Rule::_productionFromPlist(const Value& plist) {
  if (plist.asArray()) return NewProduction::initFromPlist(plist);
  if (plist.asDictionary()) return ConditionalProduction::initFromPlist(plist);
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
  auto current = paddedCopy(phrase);
  std::unordered_set<PhraseDigest, PhraseDigest::Hash> earlier;
  std::uint64_t steps = 0;
  for (int passes = 1;; ++passes) {
    const auto before = paddedCopy(current->pad());
    ContextSubstitution pass(*before, _leftHandSide.get(), _rightHandSide.get());
    current = pass.result();
    if (!_repeat) return current;
    // In a repetition, unlike after a single pass, missing blanks are added to the result itself.
    if (before->matches(current->pad()) || pass.isFull()) return current;
    if (passes == 1) earlier.insert(PhraseDigest::of(*before));
    if (!earlier.insert(PhraseDigest::of(*current)).second) {
      TQUtils::log(
          "ERROR: The repeating rule '%@' stopped after %i passes: the phrase came back "
          "to what it had been.",
          name() ? FormatArgument(*name()) : FormatArgument(nullptr), passes);
      return current;
    }
    steps += pass.steps();
    if (passes == kMostPasses || steps > kMostSteps) {
      TQUtils::log(
          "ERROR: The repeating rule '%@' stopped after %i passes, although each had "
          "changed the phrase.",
          name() ? FormatArgument(*name()) : FormatArgument(nullptr), passes);
      return current;
    }
  }
}

std::string Rule::description() const { return GrammarPart::description() + "RULE"; }

}  // namespace marlune
