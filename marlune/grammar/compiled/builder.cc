#include "marlune/grammar/compiled/builder.h"

#include <algorithm>

#include "marlune/grammar/base/grammar_error.h"
#include "marlune/grammar/base/special_characters.h"
#include "marlune/grammar/model/grammar_part.h"
#include "marlune/grammar/model/slots_in_context.h"
#include "marlune/util/format.h"
#include "marlune/util/utf16.h"

namespace marlune {

namespace {

// The flat tables store both in fewer bits than a count has.
constexpr std::uint32_t kMostMembers = 0xFFFFFF;
constexpr std::uint32_t kMostRequirements = CompiledPhrase::kMaxAttributes;

// Whether applying the rule can neither change a phrase nor write a line.
bool isIdle(const Rule& rule) {
  const SlotsInContext* const lhs = rule.leftHandSide().get();
  if (!lhs || !lhs->significantSlots()) return true;
  if (lhs->_writesLines()) return false;
  return !rule.rightHandSide() || rule.rightHandSide()->kind() == GenericProduction::Kind::other;
}

bool isWithin(std::int32_t index, std::size_t matched) {
  return index >= 0 && static_cast<std::size_t>(index) < matched;
}

bool isSuffixKey(std::string_view name) {
  return name.size() > 1 && name.front() == '-' && name.back() == '#';
}

}  // namespace

// A part of the grammar while it is read: its place among its siblings, and its rules in the order
// in which they are applied.
class CompiledBuilder::Part : public GrammarPart {
 public:
  std::vector<std::uint32_t> rules;
};

CompiledBuilder::Result CompiledBuilder::build(const Value& plist) {
  CompiledBuilder builder;
  builder._arrange(builder._part(plist).rules);
  builder._fileRules();
  builder._tables.vocabulary->shrinkToFit();
  Result result{std::move(builder._tables), {}};
  for (std::uint32_t number = 0; number < builder._objects.size(); ++number) {
    auto& object = builder._objects[number];
    if (object) result.objects.emplace_back(number, std::move(object));
  }
  return result;
}

CompiledBuilder::CompiledBuilder() { _tables.vocabulary = std::make_shared<Vocabulary>(); }

CompiledBuilder::Part CompiledBuilder::_part(const Value& plist) {
  Dictionary& fields = *plist.asDictionary();
  Part part;
  part.genericSetUpFromPlist(fields);
  if (fields.contains(SpecialCharacters::lhsKey())) {
    part.rules.push_back(_addRule(plist));
    return part;
  }
  std::vector<Part> subparts;
  for (const auto& [name, value] : fields.entries()) {
    if (!value.asDictionary() || *name == SpecialCharacters::orderKey()) continue;
    part._placeSubpart(*value.asDictionary(), name);
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

// The functions below return false for a rule that is left to its object. What they have added to
// the tables by then is never used.

bool CompiledBuilder::_compile(const Dictionary& plist, CompiledRule& compiled) {
  const auto& lhs = plist.valueForKey(SpecialCharacters::lhsKey()).asDictionary();
  if (!lhs || !lhs->contains(SpecialCharacters::significantSlotsKey())) return false;
  if (!_runUnder(SpecialCharacters::significantSlotsKey(), *lhs, false, compiled.significant) ||
      !_runUnder(SpecialCharacters::preContextKey(), *lhs, true, compiled.before) ||
      !_runUnder(SpecialCharacters::postContextKey(), *lhs, false, compiled.after)) {
    return false;
  }
  for (const Run run : {compiled.significant, compiled.before, compiled.after}) {
    compiled.hasKleene = compiled.hasKleene || _tables.patterns.hasKleene(run);
  }
  compiled.repeats = plist.valueForKey(SpecialCharacters::repeatKey()).integerValue() != 0;
  const Value& rhs = plist.valueForKey(SpecialCharacters::rhsKey());
  const std::size_t matched = compiled.significant.count;
  if (rhs.asArray()) return _production(*rhs.asArray(), matched, compiled.production);
  compiled.isChoice = true;
  return rhs.asDictionary() && _choice(*rhs.asDictionary(), matched, compiled.production);
}

// The slots under the key; none when the key is missing.
bool CompiledBuilder::_runUnder(const std::string& key, const Dictionary& plist, bool backwards,
                                Run& run) {
  const Value& slots = plist.valueForKey(key);
  if (slots.isAbsent()) return true;
  return slots.asArray() && _run(slots.asArray()->elements(), backwards, /*isAsked=*/false, run);
}

// Groups inside the slots are stored before the slots themselves. `isAsked`: whether the slots are
// members of a group that matches each member by itself; a repetition then writes a line.
bool CompiledBuilder::_run(std::span<const Value> slots, bool backwards, bool isAsked, Run& run) {
  if (slots.size() > kMostMembers) return false;
  const std::size_t outer = _elements.size();
  for (std::size_t i = 0; i < slots.size(); ++i) {
    Element element;
    if (!_element(slots[backwards ? slots.size() - 1 - i : i], backwards, isAsked, element)) {
      _elements.resize(outer);
      return false;
    }
    _elements.push_back(element);
  }
  std::vector<Element>& all = _tables.patterns.elements;
  run = {static_cast<std::uint32_t>(all.size()), static_cast<std::uint32_t>(slots.size())};
  all.insert(all.end(), _elements.begin() + static_cast<std::ptrdiff_t>(outer), _elements.end());
  _elements.resize(outer);
  return true;
}

bool CompiledBuilder::_element(const Value& slot, bool backwards, bool isAsked, Element& element) {
  using Kind = CompiledPatterns::Kind;
  if (const std::string* text = slot.asString()) {
    if (*text == SpecialCharacters::wildcardSymbol()) {
      element = {Kind::wildcard, 0, 0};
    } else if (*text == SpecialCharacters::blankSymbol()) {
      element = {Kind::blank, 0, 0};
    } else {
      _tables.patterns.requirements.push_back({Vocabulary::kContent, false, _id(*text)});
      element = _literalOf(_tables.patterns.requirements.size() - 1);
    }
    return true;
  }
  if (slot.asDictionary()) return _literal(*slot.asDictionary(), element);
  if (slot.asArray()) return _group(slot.asArray()->elements(), backwards, isAsked, element);
  element = {Kind::wildcard, 0, 0};
  return true;
}

bool CompiledBuilder::_literal(const Dictionary& attributes, Element& element) {
  std::vector<CompiledPatterns::Requirement>& all = _tables.patterns.requirements;
  const std::size_t first = all.size();
  bool canMatch = true;
  for (const auto& [name, value] : attributes.entries()) {
    const bool isSuffix = isSuffixKey(*name);
    const bool isPrefix = !isSuffix && CompiledPhrase::isComparison(*name);  // writes lines
    if (isPrefix || value.asArray() || value.asDictionary()) return false;
    if (!value.asString()) {
      canMatch = false;
      continue;
    }
    const std::size_t compared = isSuffix ? utf16Length(*name) - 2 : _id(*name);
    all.push_back(
        {static_cast<std::uint32_t>(compared) & 0x7FFFFFFF, isSuffix, _id(*value.asString())});
  }
  if (all.size() - first > kMostRequirements) return false;
  element = canMatch ? _literalOf(first) : Element{CompiledPatterns::Kind::never, 0, 0};
  return true;
}

// The literal with the requirements from `firstRequirement` on. A literal that requires only a word
// needs no requirements of its own.
CompiledBuilder::Element CompiledBuilder::_literalOf(std::size_t firstRequirement) {
  using Kind = CompiledPatterns::Kind;
  std::vector<CompiledPatterns::Requirement>& all = _tables.patterns.requirements;
  const std::size_t count = all.size() - firstRequirement;
  const CompiledPatterns::Requirement* const only = count == 1 ? &all.back() : nullptr;
  if (only && !only->isSuffix && only->name == Vocabulary::kContent &&
      only->value != Vocabulary::kEmpty) {
    const Element word{Kind::word, 0, only->value};
    all.pop_back();
    return word;
  }
  return {Kind::literal, static_cast<std::uint32_t>(count) & kMostMembers,
          static_cast<std::uint32_t>(firstRequirement)};
}

bool CompiledBuilder::_group(std::span<const Value> slot, bool backwards, bool isAsked,
                             Element& element) {
  using Kind = CompiledPatterns::Kind;
  const std::string* marker = slot.empty() ? nullptr : slot.front().asString();
  if (!marker) return false;
  Kind kind = Kind::any;
  if (*marker == SpecialCharacters::kleeneMarker()) {
    kind = Kind::kleene;
  } else if (*marker == SpecialCharacters::negationMarker()) {
    kind = Kind::none;
  } else if (*marker != SpecialCharacters::disjunctionMarker()) {
    return false;
  }
  if (kind == Kind::kleene && isAsked) return false;
  Run members;
  if (!_run(slot.subspan(1), backwards, kind != Kind::kleene, members)) return false;
  element = {kind, members.count & kMostMembers, members.first};
  return true;
}

bool CompiledBuilder::_production(const Array& plist, std::size_t matched,
                                  std::uint32_t& production) {
  CompiledProductions& all = _tables.productions;
  const auto first = static_cast<std::uint32_t>(all.produced.size());
  for (const Value& entry : plist.elements()) {
    CompiledProductions::Produced each;
    each.isOverlaid = true;
    each.settings.first = static_cast<std::uint32_t>(all.settings.size());
    if (entry.asString()) {
      all.settings.push_back({Vocabulary::kContent, _id(*entry.asString())});
    } else if (const auto& overlay = entry.asDictionary()) {
      const Value& index = overlay->valueForKey(SpecialCharacters::indexKey());
      if (!index.isNumber()) break;  // entries after this one are ignored
      each.index = std::max(index.integerValue(), CompiledProductions::kNew);
      if (each.index >= 0 && !isWithin(each.index, matched)) return false;
      if (!_settings(*overlay, matched)) return false;
    } else {
      continue;
    }
    each.settings.count = static_cast<std::uint32_t>(all.settings.size()) - each.settings.first;
    all.produced.push_back(each);
  }
  production = static_cast<std::uint32_t>(all.productions.size());
  all.productions.push_back({first, static_cast<std::uint32_t>(all.produced.size()) - first});
  return true;
}

bool CompiledBuilder::_settings(const Dictionary& overlay, std::size_t matched) {
  for (const auto& [name, value] : overlay.entries()) {
    if (*name == SpecialCharacters::indexKey()) continue;
    if (CompiledPhrase::isComparison(*name)) return false;
    CompiledProductions::Setting setting;
    setting.name = _id(*name);
    if (value.asString()) {
      setting.value = _id(*value.asString());
    } else {
      CompiledProductions::Reference reference;
      if (!_reference(value, matched, reference)) return false;
      setting.index = reference.index;
      setting.value = reference.name;
    }
    _tables.productions.settings.push_back(setting);
  }
  return true;
}

bool CompiledBuilder::_choice(const Dictionary& plist, std::size_t matched, std::uint32_t& choice) {
  CompiledProductions& all = _tables.productions;
  const auto& signature = plist.valueForKey(SpecialCharacters::signatureKey()).asArray();
  const auto& expansions = plist.valueForKey(SpecialCharacters::expansionsKey()).asDictionary();
  if (!signature || !expansions) return false;
  const Value& delimiter = plist.valueForKey(SpecialCharacters::delimiterKey());
  CompiledProductions::Choice made;
  made.delimiter = _id(delimiter.isAbsent() ? SpecialCharacters::defaultSignatureDelimiter()
                                            : formatted("%@", {delimiter}));
  made.references.first = static_cast<std::uint32_t>(all.references.size());
  made.references.count = static_cast<std::uint32_t>(signature->count());
  for (const Value& key : signature->elements()) {
    if (!_reference(key, matched, all.references.emplace_back())) return false;
  }
  made.expansions.first = static_cast<std::uint32_t>(all.expansions.size());
  made.expansions.count = static_cast<std::uint32_t>(expansions->count());
  for (const auto& [key, value] : expansions->entries()) {
    CompiledProductions::Expansion expansion{_id(*key), 0};
    if (!value.asArray() || !_production(*value.asArray(), matched, expansion.production)) {
      return false;
    }
    all.expansions.push_back(expansion);
  }
  std::sort(all.expansions.begin() + made.expansions.first, all.expansions.end(),
            [](const auto& left, const auto& right) { return left.signature < right.signature; });
  choice = static_cast<std::uint32_t>(all.choices.size());
  all.choices.push_back(made);
  return true;
}

// A reference to an attribute of a slot. Returns false unless the slot is certain to be among the
// matched ones.
bool CompiledBuilder::_reference(const Value& plist, std::size_t matched,
                                 CompiledProductions::Reference& reference) {
  const auto& fields = plist.asDictionary();
  if (!fields) return false;
  const Value& index = fields->valueForKey(SpecialCharacters::indexKey());
  const Value& name = fields->valueForKey(SpecialCharacters::attributeNameKey());
  if (!index.isNumber() || !name.asString() || !isWithin(index.integerValue(), matched)) {
    return false;
  }
  reference = {index.integerValue(), _id(*name.asString())};
  return true;
}

// Idle rules are not indexed: the phrase is padded without them.
void CompiledBuilder::_fileRules() {
  for (const CompiledRule& rule : _tables.rules) {
    _forEachElement(rule, [this](std::uint32_t element, std::int32_t) {
      _countFeatures(_tables.patterns.elements[element]);
    });
  }
  const auto count = static_cast<std::uint32_t>(_tables.rules.size());
  for (std::uint32_t number = 0; number < count; ++number) {
    if (_tables.rules[number].isLeftToObject) {
      _tables.index.file(number, {});
    } else if (!_isIdle[number]) {
      _file(number);
    }
  }
  _tables.index.finish(_tables.vocabulary->count());
}

void CompiledBuilder::_countFeatures(const Element& element) {
  const CompiledPatterns& patterns = _tables.patterns;
  if (element.kind == CompiledPatterns::Kind::word) {
    ++_frequencies[CompiledIndex::feature(Vocabulary::kContent, element.first)];
  } else if (element.kind == CompiledPatterns::Kind::literal) {
    for (std::uint32_t i = 0; i < element.count; ++i) {
      const CompiledPatterns::Requirement& each = patterns.requirements[element.first + i];
      ++_frequencies[CompiledIndex::feature(each.name, each.value)];
    }
  } else if (element.kind == CompiledPatterns::Kind::any) {
    for (std::uint32_t i = 0; i < element.count; ++i) {
      _countFeatures(patterns.elements[element.first + i]);
    }
  }
}

// Indexes the rule under the features of the slot whose features the fewest rules require.
void CompiledBuilder::_file(std::uint32_t number) {
  CompiledRule& rule = _tables.rules[number];
  Features best;
  _forEachElement(rule, [&](std::uint32_t element, std::int32_t offset) {
    Features features = _triggerOf(_tables.patterns.elements[element]);
    if (features.empty()) return;
    if (features.size() == 1) {
      rule.mask |= CompiledIndex::maskOf(static_cast<Vocabulary::Id>(features[0] >> 32),
                                         static_cast<Vocabulary::Id>(features[0]));
    }
    if (!best.empty() && _costOf(best) <= _costOf(features)) return;
    best = std::move(features);
    rule.anchor = element;
    rule.anchorOffset = offset;
  });
  _tables.index.file(number, best);
}

// The features of which a matching slot must have one; empty when it need not have any.
CompiledBuilder::Features CompiledBuilder::_triggerOf(const Element& element) const {
  const CompiledPatterns& patterns = _tables.patterns;
  Features best;
  if (element.kind == CompiledPatterns::Kind::word) {
    best = {CompiledIndex::feature(Vocabulary::kContent, element.first)};
  } else if (element.kind == CompiledPatterns::Kind::literal) {
    for (std::uint32_t i = 0; i < element.count; ++i) {
      const CompiledPatterns::Requirement& each = patterns.requirements[element.first + i];
      if (each.isSuffix || each.value == Vocabulary::kEmpty) continue;
      const Features feature = {CompiledIndex::feature(each.name, each.value)};
      if (best.empty() || _costOf(feature) < _costOf(best)) best = feature;
    }
  } else if (element.kind == CompiledPatterns::Kind::any) {
    for (std::uint32_t i = 0; i < element.count; ++i) {
      const Features more = _triggerOf(patterns.elements[element.first + i]);
      if (more.empty()) return {};
      best.insert(best.end(), more.begin(), more.end());
    }
  }
  return best;
}

std::size_t CompiledBuilder::_costOf(const Features& features) const {
  std::size_t cost = 0;
  for (const std::uint64_t each : features) cost += _frequencies.at(each);
  return cost;
}

// Visits every slot that some slot of a phrase must match, with the offset from that slot to the
// start of the significant slots (meaningless after a repetition).
template <typename Visit>
void CompiledBuilder::_forEachElement(const CompiledRule& rule, Visit visit) const {
  const auto matched = static_cast<std::int32_t>(rule.significant.count);
  for (std::uint32_t i = 0; i < rule.significant.count; ++i) {
    visit(rule.significant.first + i, -static_cast<std::int32_t>(i));
  }
  for (std::uint32_t i = 0; i < rule.before.count; ++i) {
    visit(rule.before.first + i, static_cast<std::int32_t>(i) + 1);
  }
  for (std::uint32_t i = 0; i < rule.after.count; ++i) {
    visit(rule.after.first + i, -matched - static_cast<std::int32_t>(i));
  }
}

}  // namespace marlune
