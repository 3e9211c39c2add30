#include "marlune/grammar/model/grammar_part.h"

#include <algorithm>
#include <utility>

#include "marlune/grammar/base/special_characters.h"
#include "marlune/util/tq_utils.h"

namespace marlune {

namespace {

void setIfMissing(Dictionary& plist, const Value& value, const std::string& key) {
  if (!plist.contains(key)) plist.setValueForKey(value, key);
}

}  // namespace

void GrammarPart::genericSetUpFromPlist(Dictionary& plist) {
  setIfMissing(plist, Value::integer(0), SpecialCharacters::depthKey());
  _depth = plist.valueForKey(SpecialCharacters::depthKey()).integerValue();

  if (!plist.contains(SpecialCharacters::orderKey())) {
    TQUtils::forDefaultLog(ZKPlistNotificationDefault,
                           "WARNING: GrammarPart expected a dictionary with an 'order' key, but "
                           "found none. Order '0' assumed.");
  }
  setIfMissing(plist, Value::integer(0), SpecialCharacters::orderKey());
  _order = plist.valueForKey(SpecialCharacters::orderKey()).integerValue();

  setIfMissing(plist, Value::string("ROOT"), SpecialCharacters::partNameKey());
  const Value& name = plist.valueForKey(SpecialCharacters::partNameKey());
  _name = name.asString() ? name.sharedString()
                          : std::make_shared<const std::string>(formatted("%@", {name}));
}

int GrammarPart::orderComparedTo(const GrammarPart& other) const {
  if (_order == other._order) return 0;
  return _order < other._order ? -1 : 1;
}

bool GrammarPart::_runsBefore(const GrammarPart& sibling) const {
  const int compared = orderComparedTo(sibling);
  return compared != 0 ? compared < 0 : *_name < *sibling._name;
}

bool GrammarPart::_placeSubpart(Dictionary& plist, std::shared_ptr<const std::string> name) const {
  const Value depth = Value::integer(_depth + 1);
  const Value newName = Value::string(std::move(name));
  if (plist.valueForKey(SpecialCharacters::depthKey()).equals(depth) &&
      plist.valueForKey(SpecialCharacters::partNameKey()).equals(newName)) {
    return false;
  }
  plist.setValueForKey(depth, SpecialCharacters::depthKey());
  plist.setValueForKey(newName, SpecialCharacters::partNameKey());
  return true;
}

std::shared_ptr<SimpleSlotSequence> GrammarPart::appliedTo(const SimpleSlotSequence&) const {
  TQUtils::log("ERROR: Method 'appliedTo:' called on abstract class GrammarPart.");
  return nullptr;
}

std::string GrammarPart::description() const {
  const auto tabs = static_cast<std::size_t>(std::clamp(_depth, 0, kDeepestPrinted));
  return "\n" + std::string(tabs, '\t') + (_name ? *_name : "(null)") + ": ";
}

}  // namespace marlune
