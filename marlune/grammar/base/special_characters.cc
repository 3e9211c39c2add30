#include "marlune/grammar/base/special_characters.h"

#include <cstddef>

namespace marlune {

namespace {

enum Text : std::size_t {
  kWildcardSymbol,
  kBlankSymbol,
  kDefaultAttribute,
  kKleeneMarker,
  kDisjunctionMarker,
  kNegationMarker,
  kOrderKey,
  kInsertDirective,
  kDepthKey,
  kPartNameKey,
  kIndexKey,
  kAttributeNameKey,
  kSignatureKey,
  kDelimiterKey,
  kExpansionsKey,
  kPreContextKey,
  kPostContextKey,
  kSignificantSlotsKey,
  kLhsKey,
  kRhsKey,
  kRepeatKey,
  kSuppressPronunciationKey,
  kYesString,
  kNoString,
  kDefaultSignatureDelimiter,
  kSuppressPronunciationSuffix,
};

// In one array, which takes less code than a static object for each.
const std::string& text(Text which) {
  static const std::string kTexts[] = {
      /*kWildcardSymbol=*/std::string(SpecialCharacters::kWildcard),
      /*kBlankSymbol=*/std::string(SpecialCharacters::kBlank),
      /*kDefaultAttribute=*/"content",
      /*kKleeneMarker=*/"*",
      /*kDisjunctionMarker=*/"+",
      /*kNegationMarker=*/"~",
      /*kOrderKey=*/"_order",
      /*kInsertDirective=*/"#insert",
      /*kDepthKey=*/"__depth",
      /*kPartNameKey=*/"__name",
      /*kIndexKey=*/"_index",
      /*kAttributeNameKey=*/"_attribute",
      /*kSignatureKey=*/"_signature",
      /*kDelimiterKey=*/"_delimiter",
      /*kExpansionsKey=*/"_expansions",
      /*kPreContextKey=*/"_preContext",
      /*kPostContextKey=*/"_postContext",
      /*kSignificantSlotsKey=*/"_significantSlots",
      /*kLhsKey=*/"_lhs",
      /*kRhsKey=*/"_rhs",
      /*kRepeatKey=*/"_repeat",
      /*kSuppressPronunciationKey=*/"suppressPronunciation",
      /*kYesString=*/"YES",
      /*kNoString=*/"NO",
      /*kDefaultSignatureDelimiter=*/" ",
      /*kSuppressPronunciationSuffix=*/"[suppressPronunciation]",
  };
  return kTexts[which];
}

}  // namespace

const std::string& SpecialCharacters::wildcardSymbol() { return text(kWildcardSymbol); }
const std::string& SpecialCharacters::blankSymbol() { return text(kBlankSymbol); }
const std::string& SpecialCharacters::defaultAttribute() { return text(kDefaultAttribute); }
const std::string& SpecialCharacters::kleeneMarker() { return text(kKleeneMarker); }
const std::string& SpecialCharacters::disjunctionMarker() { return text(kDisjunctionMarker); }
const std::string& SpecialCharacters::negationMarker() { return text(kNegationMarker); }
const std::string& SpecialCharacters::orderKey() { return text(kOrderKey); }
const std::string& SpecialCharacters::insertDirective() { return text(kInsertDirective); }
const std::string& SpecialCharacters::depthKey() { return text(kDepthKey); }
const std::string& SpecialCharacters::partNameKey() { return text(kPartNameKey); }
const std::string& SpecialCharacters::indexKey() { return text(kIndexKey); }
const std::string& SpecialCharacters::attributeNameKey() { return text(kAttributeNameKey); }
const std::string& SpecialCharacters::signatureKey() { return text(kSignatureKey); }
const std::string& SpecialCharacters::delimiterKey() { return text(kDelimiterKey); }
const std::string& SpecialCharacters::expansionsKey() { return text(kExpansionsKey); }
const std::string& SpecialCharacters::preContextKey() { return text(kPreContextKey); }
const std::string& SpecialCharacters::postContextKey() { return text(kPostContextKey); }
const std::string& SpecialCharacters::significantSlotsKey() { return text(kSignificantSlotsKey); }
const std::string& SpecialCharacters::lhsKey() { return text(kLhsKey); }
const std::string& SpecialCharacters::rhsKey() { return text(kRhsKey); }
const std::string& SpecialCharacters::repeatKey() { return text(kRepeatKey); }
const std::string& SpecialCharacters::suppressPronunciationKey() {
  return text(kSuppressPronunciationKey);
}
const std::string& SpecialCharacters::yesString() { return text(kYesString); }
const std::string& SpecialCharacters::noString() { return text(kNoString); }
const std::string& SpecialCharacters::defaultSignatureDelimiter() {
  return text(kDefaultSignatureDelimiter);
}
const std::string& SpecialCharacters::suppressPronunciationSuffix() {
  return text(kSuppressPronunciationSuffix);
}
const std::string& SpecialCharacters::contentKey() { return defaultAttribute(); }

}  // namespace marlune
