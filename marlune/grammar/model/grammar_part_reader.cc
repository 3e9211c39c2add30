// How a dictionary of a grammar becomes a part: here, as it makes both kinds.
#include "marlune/grammar/model/grammar_part.h"

#include "marlune/grammar/format/rule_form.h"
#include "marlune/grammar/model/directory.h"
#include "marlune/grammar/model/rule.h"

namespace marlune {

std::shared_ptr<GrammarPart> GrammarPart::instanceFromPlist(const Value& plist) {
  switch (partFormOf(plist)) {
    case PartForm::rule:
      return Rule::instanceFromPlist(plist);
    case PartForm::directory:
      return Directory::instanceFromPlist(plist);
    case PartForm::none:
      break;
  }
  return nullptr;
}

}  // namespace marlune
