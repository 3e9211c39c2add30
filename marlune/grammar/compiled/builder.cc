#include "marlune/grammar/compiled/builder.h"

#include <algorithm>

#include "marlune/grammar/base/grammar_error.h"
#include "marlune/grammar/compiled/index_builder.h"
#include "marlune/grammar/format/rule_form.h"
#include "marlune/grammar/model/grammar_part.h"
#include "marlune/grammar/model/slots_in_context.h"

namespace marlune {

namespace {

// Whether applying the rule can neither change a phrase nor write a line.
bool isIdle(const Rule& rule) {
  const SlotsInContext* const lhs = rule.leftHandSide().get();
  if (!lhs || !lhs->significantSlots()) return true;
  if (lhs->_writesLines()) return false;
  return !rule.rightHandSide();
}

}  // namespace

// A part of the grammar while it is read: its place among its siblings, and its rules in the order
// in which they are applied.
class CompiledBuilder::Part : public GrammarPart {
 public:
  std::vector<std::uint32_t> rules;
};

CompiledBuilder::Result CompiledBuilder::build(const Value& plist, bool& isChanged) {
  CompiledBuilder builder(isChanged);
  builder._arrange(builder._part(plist).rules);
  IndexBuilder(builder._tables).file(builder._isIdle);
  builder._tables.vocabulary->shrinkToFit();
  Result result{std::move(builder._tables), {}};
  for (std::uint32_t number = 0; number < builder._objects.size(); ++number) {
    auto& object = builder._objects[number];
    if (object) result.objects.emplace_back(number, std::move(object));
  }
  return result;
}

CompiledBuilder::CompiledBuilder(bool& isChanged)
    : _isChanged(isChanged),
      _patterns(_tables.patterns, *_tables.vocabulary),
      _productions(_tables.productions, *_tables.vocabulary) {}

CompiledBuilder::Part CompiledBuilder::_part(const Value& plist) {
  Dictionary& fields = *plist.asDictionary();
  Part part;
  const std::size_t entries = fields.count();
  part.genericSetUpFromPlist(fields);
  _isChanged = _isChanged || fields.count() != entries;
  if (partFormOf(plist) == PartForm::rule) {
    part.rules.push_back(_addRule(plist));
    return part;
  }
  std::vector<Part> subparts;
  for (const auto& [name, value] : fields.entries()) {
    if (!value.asDictionary() || !isNameOfSubpart(*name)) continue;
    _isChanged = part._placeSubpart(*value.asDictionary(), name) || _isChanged;
    subparts.push_back(
        GrammarError::within(*name, [this, &value = value] { return _part(value); }));
  }
  std::ranges::sort(subparts,
                    [](const Part& one, const Part& two) { return one._runsBefore(two); });
  for (const Part& each : subparts) {
    part.rules.insert(part.rules.end(), each.rules.begin(), each.rules.end());
  }
  return part;
}

// Returns the rule's number in the order of the list.
std::uint32_t CompiledBuilder::_addRule(const Value& plist) {
  CompiledRule compiled;
  std::shared_ptr<const Rule> object;
  if (!_compile(*plist.asDictionary(), compiled)) {
    object = Rule::initFromPlist(plist);
    compiled = CompiledRule();
    compiled.isLeftToObject = !isIdle(*object);
  }
  _isIdle.push_back(object && !compiled.isLeftToObject);
  _objects.push_back(compiled.isLeftToObject ? std::move(object) : nullptr);
  _tables.rules.push_back(compiled);
  return static_cast<std::uint32_t>(_tables.rules.size() - 1);
}

// Puts the rules into their final order: `numbers` lists their current numbers in that order.
void CompiledBuilder::_arrange(const std::vector<std::uint32_t>& numbers) {
  std::vector<CompiledRule> rules;
  std::vector<std::shared_ptr<const Rule>> objects;
  std::vector<char> isIdle;
  rules.reserve(numbers.size());
  for (const std::uint32_t number : numbers) {
    rules.push_back(_tables.rules[number]);
    objects.push_back(std::move(_objects[number]));
    isIdle.push_back(_isIdle[number]);
  }
  _tables.rules = std::move(rules);
  _objects = std::move(objects);
  _isIdle = std::move(isIdle);
}

// Returns false for a rule that is left to its object.
bool CompiledBuilder::_compile(const Dictionary& plist, CompiledRule& compiled) {
  const RuleForm form = RuleForm::of(plist);
  compiled.repeats = form.repeats;
  CompiledProductions::Production production;
  const bool isRead =
      form.leftHandSide && _patterns.read(*form.leftHandSide, compiled) && form.rightHandSide &&
      _productions.read(*form.rightHandSide, compiled.significant.count, production);
  compiled.productionKind = production.kind;
  compiled.productionNumber = production.number;
  return isRead;
}

}  // namespace marlune
