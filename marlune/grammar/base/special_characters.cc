#include "marlune/grammar/base/special_characters.h"

namespace marlune {

const std::string& SpecialCharacters::wildcardSymbol() {
  static const std::string kText = "?";
  return kText;
}

const std::string& SpecialCharacters::blankSymbol() {
  static const std::string kText = "_E";
  return kText;
}

const std::string& SpecialCharacters::defaultAttribute() {
  static const std::string kText = "content";
  return kText;
}

const std::string& SpecialCharacters::kleeneMarker() {
  static const std::string kText = "*";
  return kText;
}

const std::string& SpecialCharacters::disjunctionMarker() {
  static const std::string kText = "+";
  return kText;
}

const std::string& SpecialCharacters::negationMarker() {
  static const std::string kText = "~";
  return kText;
}

const std::string& SpecialCharacters::orderKey() {
  static const std::string kText = "_order";
  return kText;
}

const std::string& SpecialCharacters::insertDirective() {
  static const std::string kText = "#insert";
  return kText;
}

const std::string& SpecialCharacters::depthKey() {
  static const std::string kText = "__depth";
  return kText;
}

const std::string& SpecialCharacters::partNameKey() {
  static const std::string kText = "__name";
  return kText;
}

const std::string& SpecialCharacters::indexKey() {
  static const std::string kText = "_index";
  return kText;
}

const std::string& SpecialCharacters::attributeNameKey() {
  static const std::string kText = "_attribute";
  return kText;
}

const std::string& SpecialCharacters::signatureKey() {
  static const std::string kText = "_signature";
  return kText;
}

const std::string& SpecialCharacters::delimiterKey() {
  static const std::string kText = "_delimiter";
  return kText;
}

const std::string& SpecialCharacters::expansionsKey() {
  static const std::string kText = "_expansions";
  return kText;
}

const std::string& SpecialCharacters::preContextKey() {
  static const std::string kText = "_preContext";
  return kText;
}

const std::string& SpecialCharacters::postContextKey() {
  static const std::string kText = "_postContext";
  return kText;
}

const std::string& SpecialCharacters::significantSlotsKey() {
  static const std::string kText = "_significantSlots";
  return kText;
}

const std::string& SpecialCharacters::lhsKey() {
  static const std::string kText = "_lhs";
  return kText;
}

const std::string& SpecialCharacters::rhsKey() {
  static const std::string kText = "_rhs";
  return kText;
}

const std::string& SpecialCharacters::contentKey() { return defaultAttribute(); }

const std::string& SpecialCharacters::repeatKey() {
  static const std::string kText = "_repeat";
  return kText;
}

const std::string& SpecialCharacters::suppressPronunciationKey() {
  static const std::string kText = "suppressPronunciation";
  return kText;
}

const std::string& SpecialCharacters::yesString() {
  static const std::string kText = "YES";
  return kText;
}

const std::string& SpecialCharacters::noString() {
  static const std::string kText = "NO";
  return kText;
}

const std::string& SpecialCharacters::defaultSignatureDelimiter() {
  static const std::string kText = " ";
  return kText;
}

const std::string& SpecialCharacters::suppressPronunciationSuffix() {
  static const std::string kText = "[suppressPronunciation]";
  return kText;
}

}  // namespace marlune
