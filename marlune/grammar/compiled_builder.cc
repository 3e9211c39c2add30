#include "marlune/grammar/compiled_builder.h"

#include <algorithm>
#include <utility>

#include "marlune/grammar/compound_slot.h"
#include "marlune/grammar/directory.h"
#include "marlune/grammar/simple_slot.h"
#include "marlune/grammar/simple_slot_sequence.h"
#include "marlune/grammar/slots_in_context.h"
#include "marlune/util/utf16.h"

namespace marlune {

CompiledTables CompiledBuilder::build(const GrammarPart& root) {
  CompiledBuilder builder;
  builder._addPart(root);
  builder._fileRules();
  builder._tables.vocabulary->shrinkToFit();
  return std::move(builder._tables);
}

CompiledBuilder::CompiledBuilder() { _tables.vocabulary = std::make_shared<CompiledVocabulary>(); }

void CompiledBuilder::_addPart(const GrammarPart& part) {
  if (part.kind() == GrammarPart::Kind::rule) _addRule(static_cast<const Rule&>(part));
  if (part.kind() != GrammarPart::Kind::directory) return;
  for (const auto& each : static_cast<const Directory&>(part).orderedSubparts()) _addPart(*each);
}

void CompiledBuilder::_addRule(const Rule& rule) {
  _objects.push_back(&rule);
  CompiledRule& compiled = _tables.rules.emplace_back();
  _isSupported = true;
  _compile(rule, compiled);
  compiled.isLeftToObject = !_isSupported;
}

void CompiledBuilder::_compile(const Rule& rule, CompiledRule& compiled) {
  const SlotsInContext* lhs = rule.leftHandSide().get();
  if (!lhs || !lhs->significantSlots()) return;
  if (lhs->significantSlots()->_writesLines() || lhs->preContextReversed()->_writesLines() ||
      lhs->postContext()->_writesLines()) {
    _isSupported = false;
    return;
  }
  compiled.repeats = rule.repeat();
  compiled.significant = _run(lhs->significantSlots()->slots());
  compiled.before = _run(lhs->preContextReversed()->slots());
  compiled.after = _run(lhs->postContext()->slots());
  for (const Run run : {compiled.significant, compiled.before, compiled.after}) {
    compiled.hasKleene = compiled.hasKleene || _tables.patterns.hasKleene(run);
  }
  if (rule.rightHandSide()) {
    _compile(*rule.rightHandSide(), lhs->significantSlots()->count(), compiled);
  }
}

// Groups within the slots come to stand before the slots themselves.
CompiledBuilder::Run CompiledBuilder::_run(const SlotArray& slots) {
  std::vector<Element> run;
  run.reserve(slots.size());
  for (const auto& slot : slots) run.push_back(_element(*slot));
  std::vector<Element>& all = _tables.patterns.elements;
  const auto first = static_cast<std::uint32_t>(all.size());
  all.insert(all.end(), run.begin(), run.end());
  return {first, static_cast<std::uint32_t>(run.size())};
}

CompiledBuilder::Element CompiledBuilder::_element(const Slot& slot) {
  using Kind = CompiledPatterns::Kind;
  Kind kind = Kind::any;
  switch (slot.kind()) {
    case Slot::Kind::simple:
      return _elementOf(*slot._cellOrNull());
    case Slot::Kind::disjunction:
      break;
    case Slot::Kind::negation:
      kind = Kind::none;
      break;
    case Slot::Kind::kleene:
      kind = Kind::kleene;
      break;
    case Slot::Kind::sequence:
    case Slot::Kind::other:
      _isSupported = false;
      return {};
  }
  const Run members = _run(static_cast<const CompoundSlot&>(slot).slots()->slots());
  constexpr std::uint32_t kMostMembers = 0xFFFFFF;  // 24 bits
  _isSupported = _isSupported && members.count <= kMostMembers;
  return {kind, members.count & kMostMembers, members.first};
}

CompiledBuilder::Element CompiledBuilder::_elementOf(const Cell& cell) {
  using Kind = CompiledPatterns::Kind;
  if (cell.type() == CellTypeWildcard) return {Kind::wildcard, 0, 0};
  if (cell.type() == CellTypeBlank) return {Kind::blank, 0, 0};
  std::vector<CompiledPatterns::Requirement>& all = _tables.patterns.requirements;
  const std::size_t first = all.size();
  if (cell.attributes()) {
    for (const auto& each : cell.attributes()->entries()) {
      if (!_require(each)) return {Kind::never, 0, 0};
    }
  }
  const std::size_t count = all.size() - first;
  if (count == 1 && !all[first].isSuffix && all[first].name == CompiledVocabulary::kContent &&
      all[first].value != CompiledVocabulary::kEmpty) {
    const Element word{Kind::word, 0, all[first].value};
    all.pop_back();
    return word;
  }
  _isSupported = _isSupported && count <= CompiledPhrase::kMaxAttributes;
  return {Kind::literal, static_cast<std::uint32_t>(count & CompiledPhrase::kMaxAttributes),
          static_cast<std::uint32_t>(first)};
}

// False when no slot can fulfil it.
bool CompiledBuilder::_require(const AttributeDictionary::Entry& attribute) {
  const std::string* value = attribute.second.asString();
  if (!value) return false;
  const std::string& name = *attribute.first;
  const bool isSuffix = name.size() > 1 && name.front() == '-' && name.back() == '#';
  const std::size_t compared = isSuffix ? utf16Length(name) - 2 : _id(name);
  _tables.patterns.requirements.push_back(
      {static_cast<std::uint32_t>(compared) & 0x7FFFFFFF, isSuffix, _id(*value)});
  return true;
}

void CompiledBuilder::_compile(const GenericProduction& production, std::size_t matched,
                               CompiledRule& compiled) {
  if (production.kind() == GenericProduction::Kind::newProduction) {
    compiled.production = _production(static_cast<const NewProduction&>(production), matched);
  } else if (production.kind() == GenericProduction::Kind::conditional) {
    compiled.isChoice = true;
    compiled.production = _choice(static_cast<const ConditionalProduction&>(production), matched);
  }
}

std::uint32_t CompiledBuilder::_production(const NewProduction& production, std::size_t matched) {
  if (!production.indices() || !production.overlays()) {
    _isSupported = false;
    return 0;
  }
  const SlotArray& overlays = production.overlays()->slots();
  std::vector<CompiledProductions::Produced>& all = _tables.productions.produced;
  const auto first = static_cast<std::uint32_t>(all.size());
  for (const std::int32_t index : *production.indices()) {
    CompiledProductions::Produced each;
    if (index >= 0) each.index = _checked(index, matched);
    const std::size_t place = all.size() - first;
    each.isOverlaid = place < overlays.size();
    if (each.isOverlaid) {
      const Cell* overlay = overlays[place]->_cellOrNull().get();
      _isSupported = _isSupported && overlay;
      if (overlay) each.settings = _settings(*overlay, matched);
    }
    all.push_back(each);
  }
  _tables.productions.productions.push_back(
      {first, static_cast<std::uint32_t>(all.size()) - first});
  return static_cast<std::uint32_t>(_tables.productions.productions.size() - 1);
}

CompiledProductions::Run CompiledBuilder::_settings(const Cell& overlay, std::size_t matched) {
  std::vector<CompiledProductions::Setting>& all = _tables.productions.settings;
  const auto first = static_cast<std::uint32_t>(all.size());
  if (!overlay.attributes()) return {first, 0};
  for (const auto& [name, value] : overlay.attributes()->entries()) {
    CompiledProductions::Setting setting;
    setting.name = _id(*name);
    _isSupported = _isSupported && !CompiledPhrase::isComparison(*name);
    if (const AttributeKey* key = value.asAttributeKey()) {
      setting.index = _checked(key->index(), matched);
      setting.value = _id(key->key());
    } else if (const std::string* text = value.asString()) {
      setting.value = _id(*text);
    } else {
      _isSupported = false;
    }
    all.push_back(setting);
  }
  return {first, static_cast<std::uint32_t>(all.size()) - first};
}

std::uint32_t CompiledBuilder::_choice(const ConditionalProduction& production,
                                       std::size_t matched) {
  if (!production.signature() || !production.expansions() || !production.delimiter()) {
    _isSupported = false;
    return 0;
  }
  CompiledProductions& all = _tables.productions;
  CompiledProductions::Choice choice;
  choice.delimiter = _id(*production.delimiter());
  choice.references.first = static_cast<std::uint32_t>(all.references.size());
  choice.references.count = static_cast<std::uint32_t>(production.signature()->size());
  for (const auto& key : *production.signature()) {
    all.references.push_back({_checked(key->index(), matched), _id(key->key())});
  }
  choice.expansions.first = static_cast<std::uint32_t>(all.expansions.size());
  choice.expansions.count = static_cast<std::uint32_t>(production.expansions()->size());
  for (const auto& [signature, expansion] : *production.expansions()) {
    all.expansions.push_back({_id(*signature), _production(*expansion, matched)});
  }
  std::sort(all.expansions.begin() + choice.expansions.first, all.expansions.end(),
            [](const auto& left, const auto& right) { return left.signature < right.signature; });
  all.choices.push_back(choice);
  return static_cast<std::uint32_t>(all.choices.size() - 1);
}

// A position that is sure to lie among the matched slots.
std::int32_t CompiledBuilder::_checked(std::int32_t index, std::size_t matched) {
  _isSupported = _isSupported && index >= 0 && static_cast<std::size_t>(index) < matched;
  return index;
}

// A rule that can never change a phrase is not filed at all: the phrase is padded without it.
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
    } else if (!_changesNothing(*_objects[number])) {
      _file(number);
    }
  }
  _tables.index.finish(_tables.vocabulary->count());
}

bool CompiledBuilder::_changesNothing(const Rule& rule) {
  return !rule.leftHandSide() || !rule.leftHandSide()->significantSlots() ||
         !rule.rightHandSide() || rule.rightHandSide()->kind() == GenericProduction::Kind::other;
}

void CompiledBuilder::_countFeatures(const Element& element) {
  const CompiledPatterns& patterns = _tables.patterns;
  if (element.kind == CompiledPatterns::Kind::word) {
    ++_frequencies[CompiledIndex::feature(CompiledVocabulary::kContent, element.first)];
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

// Files the rule under what the slot asks for that the fewest rules ask for.
void CompiledBuilder::_file(std::uint32_t number) {
  CompiledRule& rule = _tables.rules[number];
  Features best;
  _forEachElement(rule, [&](std::uint32_t element, std::int32_t offset) {
    Features features = _triggerOf(_tables.patterns.elements[element]);
    if (features.empty()) return;
    if (features.size() == 1) {
      rule.mask |= CompiledIndex::maskOf(static_cast<CompiledVocabulary::Id>(features[0] >> 32),
                                         static_cast<CompiledVocabulary::Id>(features[0]));
    }
    if (!best.empty() && _costOf(best) <= _costOf(features)) return;
    best = std::move(features);
    rule.anchor = element;
    rule.anchorOffset = offset;
  });
  _tables.index.file(number, best);
}

// Features of which a slot that matches must have one; none when it need not have any.
CompiledBuilder::Features CompiledBuilder::_triggerOf(const Element& element) const {
  const CompiledPatterns& patterns = _tables.patterns;
  Features best;
  if (element.kind == CompiledPatterns::Kind::word) {
    best = {CompiledIndex::feature(CompiledVocabulary::kContent, element.first)};
  } else if (element.kind == CompiledPatterns::Kind::literal) {
    for (std::uint32_t i = 0; i < element.count; ++i) {
      const CompiledPatterns::Requirement& each = patterns.requirements[element.first + i];
      if (each.isSuffix || each.value == CompiledVocabulary::kEmpty) continue;
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

// Visits every slot that some slot of a phrase must match, with the distance from that slot to
// where the significant slots begin (behind a repetition it says nothing).
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
