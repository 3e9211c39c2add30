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
  const Value& depth = plist.valueForKey(SpecialCharacters::depthKey());
  const std::string* const held = plist.valueForKey(SpecialCharacters::partNameKey()).asString();
  const bool isSame = held && *held == *name && depth.kind() == Value::Kind::integer &&
                      depth.integerValue() == _depth + 1;
  if (isSame) return false;
  plist.setValueForKey(Value::integer(_depth + 1), SpecialCharacters::depthKey());
  plist.setValueForKey(Value::string(std::move(name)), SpecialCharacters::partNameKey());
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
