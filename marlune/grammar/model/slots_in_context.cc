#include "marlune/grammar/model/slots_in_context.h"

#include <algorithm>

#include "marlune/grammar/base/grammar_error.h"
#include "marlune/grammar/base/make_shared_of.h"
#include "marlune/grammar/base/special_characters.h"
#include "marlune/grammar/format/rule_form.h"
#include "marlune/grammar/model/sequence_matcher.h"
#include "marlune/util/tq_utils.h"

namespace marlune {

namespace {

// The sequence that the value under the key describes; nullptr when the key is missing.
template <typename Sequence>
std::shared_ptr<Sequence> sequenceOf(const Value* plist, const std::string& key) {
  if (!plist) return nullptr;
  return GrammarError::within(key, [plist] { return Sequence::initFromPlist(*plist); });
}

}  // namespace

std::shared_ptr<SlotsInContext> SlotsInContext::initFromPlist(const Value& plist) {
  auto result = makeSharedOf<SlotsInContext>();
  const auto& fields = plist.asDictionary();
  if (!fields) return result;

  const LeftHandSideForm form = LeftHandSideForm::of(*fields);
  result->_significantSlots = sequenceOf<SimpleSlotSequence>(
      form.significantSlots, SpecialCharacters::significantSlotsKey());
  if (!result->_significantSlots) {
    TQUtils::systemLog("ERROR: An LHS must have a 'significantSlots' key.");
  }
  result->_preContext =
      sequenceOf<SlotSequence>(form.preContext, SpecialCharacters::preContextKey());
  if (result->_preContext) {
    result->_preContextReversed = result->_preContext->reversed();
  } else {
    result->_preContext = SlotSequence::emptySlotSequence();
    result->_preContextReversed = result->_preContext;
  }
  result->_postContext =
      sequenceOf<SlotSequence>(form.postContext, SpecialCharacters::postContextKey());
  if (!result->_postContext) result->_postContext = SlotSequence::emptySlotSequence();
  return result;
}

std::shared_ptr<SlotsInContext> SlotsInContext::instanceFromPlist(const Value& plist) {
  return initFromPlist(plist);
}

std::shared_ptr<SlotsInContext> SlotsInContext::initWithArraysForSignificantSlots(
    SlotArray significantSlots, std::optional<SlotArray> preContext,
    std::optional<SlotArray> postContext) {
  auto result = makeSharedOf<SlotsInContext>();
  result->_significantSlots = SimpleSlotSequence::initWithArray(std::move(significantSlots));
  result->_preContext = SlotSequence::initWithArray(std::move(preContext).value_or(SlotArray()));
  result->_preContextReversed = result->_preContext->reversed();
  result->_postContext = SlotSequence::initWithArray(std::move(postContext).value_or(SlotArray()));
  return result;
}

std::shared_ptr<SlotsInContext> SlotsInContext::slotsInContextWithSignificantSlotSequence(
    const SlotSequence& sequence) {
  return initWithArraysForSignificantSlots(sequence.slots(), std::nullopt, std::nullopt);
}

std::vector<std::int32_t> SlotsInContext::indicesOfOccurrencesInTarget(
    const SimpleSlotSequence& phrase) const {
  std::uint64_t steps = 0;
  return _indicesOfOccurrences(phrase, steps);
}

std::vector<std::int32_t> SlotsInContext::_indicesOfOccurrences(const SimpleSlotSequence& phrase,
                                                                std::uint64_t& steps) const {
  if (!_significantSlots) return {};
  std::vector<std::int32_t> indices = _significantSlots->_indicesOfOccurrences(phrase, steps);

  // The slots before position i, read backwards, are a suffix of the whole phrase read backwards,
  // so one matcher and its cache serve all positions. The same holds for the slots after it.
  const std::size_t count = phrase.count();
  SequenceMatcher before(_preContextReversed->slots(), SlotRun::backwards(phrase.slots()));
  SequenceMatcher behind(_postContext->slots(), SlotRun::forwards(phrase.slots()));
  std::erase_if(indices, [&](std::int32_t index) {
    const auto position = static_cast<std::size_t>(index);
    const bool preHolds = before.matchesFrom(count - position);
    // Matched even if the pre-context has failed, because matching may write lines.
    const bool postHolds =
        behind.matchesFrom(std::min(count, position + _significantSlots->count()));
    return !preHolds || !postHolds;
  });
  steps += before.steps() + behind.steps();
  return indices;
}

bool SlotsInContext::_writesLines() const {
  return _significantSlots && (_significantSlots->_writesLines() ||
                               _preContextReversed->_writesLines() || _postContext->_writesLines());
}

std::string SlotsInContext::description() const {
  return formatted("\n  preContext: %@ \n significant: %@ \n postContext: %@",
                   {_preContext, _significantSlots, _postContext});
}

}  // namespace marlune
