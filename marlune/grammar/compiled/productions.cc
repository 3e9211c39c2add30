#include "marlune/grammar/compiled/productions.h"

#include <algorithm>

#include "marlune/grammar/base/repetition.h"
#include "marlune/grammar/model/simple_slot_sequence.h"

namespace marlune {

const CompiledProductions::Run* CompiledProductions::replacementFor(
    const Production& production, const CompiledPhrase& phrase, std::span<const Slot> occurrence,
    const Vocabulary& vocabulary) const {
  switch (production.kind) {
    case Production::Kind::replacement:
      return &replacements[production.number];
    case Production::Kind::choice:
      return _chosen(choices[production.number], phrase, occurrence, vocabulary);
  }
  return nullptr;
}

std::uint64_t CompiledProductions::stepsOf(const Production& production) const {
  switch (production.kind) {
    case Production::Kind::replacement:
      return 0;
    case Production::Kind::choice:
      return Repetition::stepsOfChoice(choices[production.number].expansions.count);
  }
  return 0;
}

const CompiledProductions::Run* CompiledProductions::_chosen(const Choice& choice,
                                                             const CompiledPhrase& phrase,
                                                             std::span<const Slot> occurrence,
                                                             const Vocabulary& vocabulary) const {
  const Id signature = _signatureOf(choice, phrase, occurrence, vocabulary);
  const auto begin = expansions.begin() + choice.expansions.first;
  const auto end = begin + choice.expansions.count;
  const auto place = std::lower_bound(
      begin, end, signature, [](const Expansion& each, Id id) { return each.signature < id; });
  if (place == end || place->signature != signature) return nullptr;
  return &replacements[place->replacement];
}

// The number of the joined values; when the grammar does not contain the text, a number that no
// expansion has. The usual choice by one value builds no text.
CompiledProductions::Id CompiledProductions::_signatureOf(const Choice& choice,
                                                          const CompiledPhrase& phrase,
                                                          std::span<const Slot> occurrence,
                                                          const Vocabulary& vocabulary) const {
  _joined.clear();
  Id only = Vocabulary::kEmpty;
  bool isFirst = true;
  for (std::uint32_t i = 0; i < choice.references.count; ++i) {
    const Reference& each = references[choice.references.first + i];
    const Id value = phrase.valueOf(occurrence[static_cast<std::size_t>(each.index)], each.name);
    if (value == Vocabulary::kAbsent) continue;
    if (choice.references.count == 1) return value;
    if (!isFirst) _joined += phrase.text(choice.delimiter);
    isFirst = false;
    _joined += phrase.text(value);
    if (_joined.size() > vocabulary.longest()) return Vocabulary::kAbsent;
  }
  return isFirst ? only : vocabulary.find(_joined);
}

bool CompiledProductions::append(Run replacement, CompiledPhrase& phrase,
                                 std::span<const Slot> occurrence,
                                 std::vector<Slot>& result) const {
  for (std::uint32_t i = 0; i < replacement.count; ++i) {
    const Produced& each = produced[replacement.first + i];
    if (each.isOverlaid) {
      if (!_overlay(each, phrase, occurrence, result)) return false;
    } else if (each.index < 0) {
      result.push_back(phrase.wildcard());
    } else {
      result.push_back(occurrence[static_cast<std::size_t>(each.index)]);
    }
    if (phrase.mostText(result.size()) > SimpleSlotSequence::kMostText || !phrase.hasRoom()) {
      return false;
    }
  }
  return true;
}

bool CompiledProductions::_overlay(const Produced& each, CompiledPhrase& phrase,
                                   std::span<const Slot> occurrence,
                                   std::vector<Slot>& result) const {
  const Slot* base = each.index < 0 ? nullptr : &occurrence[static_cast<std::size_t>(each.index)];
  Slot slot = phrase.beginOverlay(base);
  for (std::uint32_t i = 0; i < each.settings.count; ++i) {
    const Setting& setting = settings[each.settings.first + i];
    Id value = setting.value;
    if (setting.index >= 0) {
      value = phrase.valueOf(occurrence[static_cast<std::size_t>(setting.index)], setting.value);
      if (value == Vocabulary::kAbsent) value = Vocabulary::kEmpty;
    }
    if (!phrase.set(slot, setting.name, value)) return false;
  }
  result.push_back(slot);
  return true;
}

}  // namespace marlune
