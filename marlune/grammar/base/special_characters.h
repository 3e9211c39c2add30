#ifndef MARLUNE_GRAMMAR_BASE_SPECIAL_CHARACTERS_H_
#define MARLUNE_GRAMMAR_BASE_SPECIAL_CHARACTERS_H_

#include <string>

namespace marlune {

// The vocabulary of grammar files: every marker and every key, in one place, so that no reader
// spells one itself. Each operation gives the same string object at every call.
class SpecialCharacters {
 public:
  SpecialCharacters() = delete;

  // A cell written as a string: the wildcard.
  static const std::string& wildcardSymbol();

  // A cell written as a string: the blank.
  static const std::string& blankSymbol();

  // The attribute that a plain word sets; for callers.
  static const std::string& defaultAttribute();

  // First in a slot array: a KleeneSlot.
  static const std::string& kleeneMarker();

  // First in a slot array: a DisjunctionSlot.
  static const std::string& disjunctionMarker();

  // First in a slot array: a NegationSlot.
  static const std::string& negationMarker();

  // A part's place among its siblings.
  static const std::string& orderKey();

  // Begins a string that stands for a chunk from elsewhere in the file.
  static const std::string& insertDirective();

  // A part's depth, written by the loader.
  static const std::string& depthKey();

  // A part's name, written by the loader.
  static const std::string& partNameKey();

  // Position in the matched stretch: of an AttributeKey, of a production's entry.
  static const std::string& indexKey();

  // An AttributeKey's attribute name.
  static const std::string& attributeNameKey();

  // A conditional production's AttributeKeys.
  static const std::string& signatureKey();

  // What stands between a signature's values.
  static const std::string& delimiterKey();

  // A conditional production's productions by signature.
  static const std::string& expansionsKey();

  // Left-hand side: what must stand right before.
  static const std::string& preContextKey();

  // Left-hand side: what must stand right after.
  static const std::string& postContextKey();

  // Left-hand side: what is rewritten.
  static const std::string& significantSlotsKey();

  // A rule's left-hand side; tells a rule from a directory.
  static const std::string& lhsKey();

  // A rule's right-hand side.
  static const std::string& rhsKey();

  // The attribute that holds a cell's word.
  static const std::string& contentKey();

  // A rule's wish to run until nothing changes.
  static const std::string& repeatKey();

  // Attribute of a word that is not spoken; for callers.
  static const std::string& suppressPronunciationKey();

  // Truth as text; for callers.
  static const std::string& yesString();

  // Its opposite; for callers.
  static const std::string& noString();

  // The delimiter of a signature that gives none.
  static const std::string& defaultSignatureDelimiter();

  // The same attribute, in brackets behind a word; for callers.
  static const std::string& suppressPronunciationSuffix();
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_BASE_SPECIAL_CHARACTERS_H_
