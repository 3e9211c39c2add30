#ifndef MARLUNE_GRAMMAR_BASE_SPECIAL_CHARACTERS_H_
#define MARLUNE_GRAMMAR_BASE_SPECIAL_CHARACTERS_H_

#include <string>
#include <string_view>

namespace marlune {

// The vocabulary of grammar files: every marker and every key, in one place, so that no reader
// repeats one. Each operation returns the same string object in every call.
class SpecialCharacters {
 public:
  SpecialCharacters() = delete;

  // The first two as constants, because every word is compared with them.
  static constexpr std::string_view kWildcard = "?";
  static constexpr std::string_view kBlank = "_E";

  // A cell written as a string: the wildcard.
  static const std::string& wildcardSymbol();

  // A cell written as a string: the blank.
  static const std::string& blankSymbol();

  // The attribute that a plain word sets; for callers.
  static const std::string& defaultAttribute();

  // The first element of a slot array that makes a KleeneSlot.
  static const std::string& kleeneMarker();

  // The first element of a slot array that makes a DisjunctionSlot.
  static const std::string& disjunctionMarker();

  // The first element of a slot array that makes a NegationSlot.
  static const std::string& negationMarker();

  // A part's place among its siblings.
  static const std::string& orderKey();

  // Begins a string that stands for a chunk from elsewhere in the file.
  static const std::string& insertDirective();

  // A part's depth, written by the loader.
  static const std::string& depthKey();

  // A part's name, written by the loader.
  static const std::string& partNameKey();

  // A position in the matched stretch: in an AttributeKey and in a production's entry.
  static const std::string& indexKey();

  // An AttributeKey's attribute name.
  static const std::string& attributeNameKey();

  // A conditional production's AttributeKeys.
  static const std::string& signatureKey();

  // The text between a signature's values.
  static const std::string& delimiterKey();

  // A conditional production's productions by signature.
  static const std::string& expansionsKey();

  // Left-hand side: the slots required right before.
  static const std::string& preContextKey();

  // Left-hand side: the slots required right after.
  static const std::string& postContextKey();

  // Left-hand side: the slots to rewrite.
  static const std::string& significantSlotsKey();

  // A rule's left-hand side; its presence distinguishes a rule from a directory.
  static const std::string& lhsKey();

  // A rule's right-hand side.
  static const std::string& rhsKey();

  // The attribute that holds a cell's word.
  static const std::string& contentKey();

  // Whether a rule runs until nothing changes.
  static const std::string& repeatKey();

  // Attribute of a word that is not spoken; for callers.
  static const std::string& suppressPronunciationKey();

  // True as text; for callers.
  static const std::string& yesString();

  // False as text; for callers.
  static const std::string& noString();

  // The delimiter of a signature that has none.
  static const std::string& defaultSignatureDelimiter();

  // The same attribute, in brackets after a word; for callers.
  static const std::string& suppressPronunciationSuffix();
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_BASE_SPECIAL_CHARACTERS_H_
