#include "marlune/grammar/compiled/pattern_builder.h"

#include "marlune/grammar/base/content_comparison.h"
#include "marlune/grammar/format/rule_form.h"
#include "marlune/grammar/format/slot_form.h"

namespace marlune {

namespace {

// The flat tables store both in fewer bits than a count has.
constexpr std::uint32_t kMostMembers = 0xFFFFFF;
constexpr std::uint32_t kMostRequirements = CompiledPhrase::kMaxAttributes;

}  // namespace

bool PatternBuilder::read(const Value& leftHandSide, CompiledRule& rule) {
  const auto& fields = leftHandSide.asDictionary();
  if (!fields) return false;
  const LeftHandSideForm form = LeftHandSideForm::of(*fields);
  if (!form.significantSlots || !_context(form.significantSlots, false, rule.significant) ||
      !_context(form.preContext, true, rule.before) ||
      !_context(form.postContext, false, rule.after)) {
    return false;
  }
  for (const Run run : {rule.significant, rule.before, rule.after}) {
    rule.hasKleene = rule.hasKleene || _patterns.hasKleene(run);
  }
  return true;
}

// An absent context has no slots.
bool PatternBuilder::_context(const Value* slots, bool backwards, Run& run) {
  if (!slots) return true;
  const auto& array = slots->asArray();
  return array && _run(array->elements(), backwards, /*isAsked=*/false, run);
}

// Groups inside the slots are stored before the slots themselves. `isAsked`: whether the slots are
// members of a group that matches each member by itself; a repetition then writes a line.
bool PatternBuilder::_run(std::span<const Value> slots, bool backwards, bool isAsked, Run& run) {
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
  std::vector<Element>& all = _patterns.elements;
  run = {static_cast<std::uint32_t>(all.size()), static_cast<std::uint32_t>(slots.size())};
  all.insert(all.end(), _elements.begin() + static_cast<std::ptrdiff_t>(outer), _elements.end());
  _elements.resize(outer);
  return true;
}

bool PatternBuilder::_element(const Value& slot, bool backwards, bool isAsked, Element& element) {
  const SlotForm form = SlotForm::of(slot);
  Kind kind = Kind::never;
  switch (form.kind) {
    case SlotForm::Kind::cell:
      return _cell(slot, element);
    case SlotForm::Kind::disjunction:
      kind = Kind::any;
      break;
    case SlotForm::Kind::kleene:
      if (isAsked) return false;
      kind = Kind::kleene;
      break;
    case SlotForm::Kind::negation:
      kind = Kind::none;
      break;
    case SlotForm::Kind::empty:
    case SlotForm::Kind::unmarked:
      return false;
  }
  Run members;
  if (!_run(form.members, backwards, kind != Kind::kleene, members)) return false;
  element = {kind, members.count & kMostMembers, members.first};
  return true;
}

bool PatternBuilder::_cell(const Value& cell, Element& element) {
  switch (cellFormOf(cell)) {
    case CellForm::blank:
      element = {Kind::blank, 0, 0};
      break;
    case CellForm::word:
      _patterns.requirements.push_back(
          {Vocabulary::kContent, false, _vocabulary.add(*cell.asString())});
      element = _literalOf(_patterns.requirements.size() - 1);
      break;
    case CellForm::attributes:
      return _literal(*cell.asDictionary(), element);
    case CellForm::wildcard:
    case CellForm::other:
      element = {Kind::wildcard, 0, 0};
      break;
  }
  return true;
}

bool PatternBuilder::_literal(const Dictionary& attributes, Element& element) {
  std::vector<Requirement>& all = _patterns.requirements;
  const std::size_t first = all.size();
  bool canMatch = true;
  for (const auto& [name, value] : attributes.entries()) {
    const ContentComparison comparison = contentComparisonOf(*name);
    const Value::Kind kind = value.kind();
    // Comparing a prefix writes lines.
    if (comparison == ContentComparison::prefix || kind == Value::Kind::array ||
        kind == Value::Kind::dictionary) {
      return false;
    }
    if (kind != Value::Kind::string) {
      canMatch = false;
      continue;
    }
    const bool isSuffix = comparison == ContentComparison::suffix;
    const std::size_t compared = isSuffix ? comparedLength(*name) : _vocabulary.add(*name);
    all.push_back({static_cast<std::uint32_t>(compared) & 0x7FFFFFFF, isSuffix,
                   _vocabulary.add(*value.asString())});
  }
  if (all.size() - first > kMostRequirements) return false;
  element = canMatch ? _literalOf(first) : Element{Kind::never, 0, 0};
  return true;
}

// The literal with the requirements from `firstRequirement` on. A literal that requires only a word
// needs no requirements of its own.
PatternBuilder::Element PatternBuilder::_literalOf(std::size_t firstRequirement) {
  std::vector<Requirement>& all = _patterns.requirements;
  const std::size_t count = all.size() - firstRequirement;
  const Requirement* const only = count == 1 ? &all.back() : nullptr;
  if (only && !only->isSuffix && only->name == Vocabulary::kContent &&
      only->value != Vocabulary::kEmpty) {
    const Element word{Kind::word, 0, only->value};
    all.pop_back();
    return word;
  }
  return {Kind::literal, static_cast<std::uint32_t>(count) & kMostMembers,
          static_cast<std::uint32_t>(firstRequirement)};
}

}  // namespace marlune
