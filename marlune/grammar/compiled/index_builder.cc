#include "marlune/grammar/compiled/index_builder.h"

#include <utility>

namespace marlune {

void IndexBuilder::file(const std::vector<char>& isIdle) {
  for (const CompiledRule& rule : _tables.rules) {
    _forEachElement(rule, [this](std::uint32_t element, std::int32_t) {
      _countFeatures(_tables.patterns.elements[element]);
    });
  }
  const auto count = static_cast<std::uint32_t>(_tables.rules.size());
  for (std::uint32_t number = 0; number < count; ++number) {
    if (_tables.rules[number].isLeftToObject) {
      _tables.index.file(number, {});
    } else if (!isIdle[number]) {
      _file(number);
    }
  }
  _tables.index.finish(_tables.vocabulary->count());
}

void IndexBuilder::_countFeatures(const Element& element) {
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
void IndexBuilder::_file(std::uint32_t number) {
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
IndexBuilder::Features IndexBuilder::_triggerOf(const Element& element) const {
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

std::size_t IndexBuilder::_costOf(const Features& features) const {
  std::size_t cost = 0;
  for (const std::uint64_t each : features) cost += _frequencies.at(each);
  return cost;
}

// Visits every slot that some slot of a phrase must match, with the offset from that slot to the
// start of the significant slots (meaningless after a repetition).
template <typename Visit>
void IndexBuilder::_forEachElement(const CompiledRule& rule, Visit visit) const {
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
