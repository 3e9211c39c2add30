#include "marlune/grammar/model/directory.h"

#include <algorithm>

#include "marlune/grammar/base/grammar_error.h"
#include "marlune/grammar/base/make_shared_of.h"
#include "marlune/grammar/format/rule_form.h"
#include "marlune/util/tq_utils.h"

namespace marlune {

namespace {

constexpr std::string_view kTrace = ZKPlistNotificationDefault;

}  // namespace

std::shared_ptr<Directory> Directory::initFromPlist(const Value& plist) {
  const auto& fields = plist.asDictionary();
  if (!fields) {
    TQUtils::systemLog("ERROR: GrammarPart expected a dictionary, but found a %@",
                       plist.kindName());
    TQUtils::systemLog("Found: %@", plist);
    return nullptr;
  }
  auto result = makeSharedOf<Directory>();
  result->genericSetUpFromPlist(*fields);
  for (const auto& [name, value] : fields->entries()) {
    if (!isNameOfSubpart(*name)) continue;
    TQUtils::forDefaultLog(kTrace, "%@", *name);
    if (value.asDictionary()) result->_addSubpart(name, value);
  }
  result->_orderedSubparts.shrink_to_fit();
  std::ranges::sort(result->_orderedSubparts,
                    [](const auto& one, const auto& two) { return one->_runsBefore(*two); });
  return result;
}

std::shared_ptr<Directory> Directory::instanceFromPlist(const Value& plist) {
  return initFromPlist(plist);
}

void Directory::_addSubpart(const std::shared_ptr<const std::string>& name, const Value& plist) {
  _placeSubpart(*plist.asDictionary(), name);
  GrammarError::within(*name,
                       [&] { _orderedSubparts.push_back(GrammarPart::instanceFromPlist(plist)); });
}

std::shared_ptr<SimpleSlotSequence> Directory::appliedTo(const SimpleSlotSequence& phrase) const {
  std::shared_ptr<SimpleSlotSequence> current;
  for (const std::shared_ptr<GrammarPart>& part : _orderedSubparts) {
    current = part->appliedTo(current ? *current : phrase);
    if (!current) current = SimpleSlotSequence::emptySlotSequence();
    TQUtils::forDefaultLog(kTrace, "Midway Result: %@", current);
  }
  return current ? current : SimpleSlotSequence::slotSequenceWithArray(phrase.slots());
}

std::string Directory::description() const {
  std::string text = GrammarPart::description();
  for (const std::shared_ptr<GrammarPart>& part : _orderedSubparts) text += part->description();
  return text;
}

}  // namespace marlune
