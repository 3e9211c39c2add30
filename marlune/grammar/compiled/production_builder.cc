#include "marlune/grammar/compiled/production_builder.h"

#include <algorithm>

#include "marlune/grammar/base/content_comparison.h"
#include "marlune/grammar/format/production_form.h"

namespace marlune {

namespace {

bool isWithin(std::int32_t index, std::size_t matched) {
  return index >= 0 && static_cast<std::size_t>(index) < matched;
}

}  // namespace

bool ProductionBuilder::read(const Value& rightHandSide, std::size_t matched,
                             CompiledProductions::Production& production) {
  using Kind = CompiledProductions::Production::Kind;
  switch (productionFormOf(rightHandSide)) {
    case ProductionForm::newProduction:
      production.kind = Kind::replacement;
      return _replacement(*rightHandSide.asArray(), matched, production.number);
    case ProductionForm::conditional:
      production.kind = Kind::choice;
      return _choice(*rightHandSide.asDictionary(), matched, production.number);
    case ProductionForm::none:
      break;
  }
  return false;
}

bool ProductionBuilder::_replacement(const Array& plist, std::size_t matched,
                                     std::uint32_t& number) {
  const auto first = static_cast<std::uint32_t>(_all.produced.size());
  for (const Value& element : plist.elements()) {
    const ProducedForm form = ProducedForm::of(element);
    if (form.kind == ProducedForm::Kind::last) break;
    if (form.kind == ProducedForm::Kind::ignored) continue;
    CompiledProductions::Produced each;
    each.isOverlaid = true;
    each.index = std::max(form.index, CompiledProductions::kNew);
    if (each.index >= 0 && !isWithin(each.index, matched)) return false;
    each.settings.first = static_cast<std::uint32_t>(_all.settings.size());
    if (form.kind == ProducedForm::Kind::word) {
      _all.settings.push_back({Vocabulary::kContent, _vocabulary.add(*element.asString())});
    } else if (!_overlay(*form.overlay, matched)) {
      return false;
    }
    each.settings.count = static_cast<std::uint32_t>(_all.settings.size()) - each.settings.first;
    _all.produced.push_back(each);
  }
  number = static_cast<std::uint32_t>(_all.replacements.size());
  _all.replacements.push_back({first, static_cast<std::uint32_t>(_all.produced.size()) - first});
  return true;
}

bool ProductionBuilder::_overlay(const Dictionary& overlay, std::size_t matched) {
  for (const auto& [name, value] : overlay.entries()) {
    if (!ProducedForm::isAttribute(*name)) continue;
    if (contentComparisonOf(*name) != ContentComparison::none) return false;
    CompiledProductions::Setting setting;
    setting.name = _vocabulary.add(*name);
    if (value.asString()) {
      setting.value = _vocabulary.add(*value.asString());
    } else {
      CompiledProductions::Reference reference;
      if (!_reference(value, matched, reference)) return false;
      setting.index = reference.index;
      setting.value = reference.name;
    }
    _all.settings.push_back(setting);
  }
  return true;
}

bool ProductionBuilder::_choice(const Dictionary& plist, std::size_t matched,
                                std::uint32_t& number) {
  const ConditionalForm form = ConditionalForm::of(plist);
  if (!form.signature || !form.expansions) return false;
  CompiledProductions::Choice choice;
  choice.delimiter = _vocabulary.add(form.delimiter);
  choice.references.first = static_cast<std::uint32_t>(_all.references.size());
  choice.references.count = static_cast<std::uint32_t>(form.signature->count());
  for (const Value& key : form.signature->elements()) {
    if (!_reference(key, matched, _all.references.emplace_back())) return false;
  }
  choice.expansions.first = static_cast<std::uint32_t>(_all.expansions.size());
  choice.expansions.count = static_cast<std::uint32_t>(form.expansions->count());
  for (const auto& [key, value] : form.expansions->entries()) {
    CompiledProductions::Expansion expansion{_vocabulary.add(*key), 0};
    if (!value.asArray() || !_replacement(*value.asArray(), matched, expansion.replacement)) {
      return false;
    }
    _all.expansions.push_back(expansion);
  }
  std::sort(_all.expansions.begin() + choice.expansions.first, _all.expansions.end(),
            [](const auto& left, const auto& right) { return left.signature < right.signature; });
  number = static_cast<std::uint32_t>(_all.choices.size());
  _all.choices.push_back(choice);
  return true;
}

// Returns false unless the slot is certain to be among the matched ones.
bool ProductionBuilder::_reference(const Value& plist, std::size_t matched,
                                   CompiledProductions::Reference& reference) {
  const ReferenceForm form = ReferenceForm::of(plist);
  if (form.kind != ReferenceForm::Kind::complete || !isWithin(form.index, matched)) return false;
  reference = {form.index, _vocabulary.add(*form.name->asString())};
  return true;
}

}  // namespace marlune
