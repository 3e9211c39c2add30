#include "marlune/grammar/compiled/index.h"

#include <algorithm>
#include <utility>

namespace marlune {

void CompiledIndex::file(std::uint32_t rule, std::span<const std::uint64_t> features) {
  if (features.empty()) _always.push_back(rule);
  for (const std::uint64_t feature : features) _unsorted.emplace_back(feature, rule);
}

// Runs once per grammar: optimise it for size.
[[gnu::cold]] void CompiledIndex::finish(std::size_t vocabularyCount) {
  std::sort(_unsorted.begin(), _unsorted.end());
  _unsorted.erase(std::unique(_unsorted.begin(), _unsorted.end()), _unsorted.end());
  _rules.reserve(_unsorted.size());
  _byWord.resize(vocabularyCount);
  for (const auto& [feature, rule] : _unsorted) {
    const bool isWord = feature >> 32 == Vocabulary::kContent;
    Range& range = isWord ? _byWord[static_cast<Id>(feature)] : _byAttribute[feature];
    if (range.last == 0) range.first = static_cast<std::uint32_t>(_rules.size());
    _rules.push_back(rule);
    range.last = static_cast<std::uint32_t>(_rules.size());
  }
  _unsorted = {};
}

void CompiledIndex::call(const CompiledPhrase& phrase, const CompiledPhrase::Slot& slot,
                         std::uint32_t from, CompiledAgenda& agenda, std::uint64_t& mask) const {
  if (slot.content < _byWord.size()) {
    mask |= maskOf(Vocabulary::kContent, slot.content);
    _call(_byWord[slot.content], from, agenda);
  }
  if (slot.attributeCount > 0) _callByAttributes(phrase, slot, from, agenda, mask);
}

void CompiledIndex::_call(Range range, std::uint32_t from, CompiledAgenda& agenda) const {
  for (std::uint32_t i = range.first; i < range.last; ++i) {
    if (_rules[i] >= from) agenda.add(_rules[i]);
  }
}

void CompiledIndex::_callByAttributes(const CompiledPhrase& phrase,
                                      const CompiledPhrase::Slot& slot, std::uint32_t from,
                                      CompiledAgenda& agenda, std::uint64_t& mask) const {
  for (const CompiledPhrase::Attribute& each : phrase.attributesOf(slot)) {
    mask |= maskOf(each.name, each.value);
    const auto place = _byAttribute.find(feature(each.name, each.value));
    if (place != _byAttribute.end()) _call(place->second, from, agenda);
  }
}

}  // namespace marlune
