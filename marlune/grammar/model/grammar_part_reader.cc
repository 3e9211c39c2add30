// How a dictionary of a grammar becomes a part: here, as it makes both kinds.
#include "marlune/grammar/model/grammar_part.h"

#include "marlune/grammar/base/special_characters.h"
#include "marlune/grammar/model/directory.h"
#include "marlune/grammar/model/rule.h"

namespace marlune {

std::shared_ptr<GrammarPart> GrammarPart::instanceFromPlist(const Value& plist) {
  const auto& fields = plist.asDictionary();
  if (!fields) return nullptr;
  if (fields->contains(SpecialCharacters::lhsKey())) return Rule::instanceFromPlist(plist);
  return Directory::instanceFromPlist(plist);
}

}  // namespace marlune
