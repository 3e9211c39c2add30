#ifndef MARLUNE_GRAMMAR_COMPILED_INDEX_H_
#define MARLUNE_GRAMMAR_COMPILED_INDEX_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <unordered_map>
#include <vector>

#include "marlune/grammar/base/vocabulary.h"
#include "marlune/grammar/compiled/agenda.h"
#include "marlune/grammar/compiled/phrase.h"

namespace marlune {

// Which rules a phrase calls for. A rule is filed under a feature (an attribute with a value) that
// a slot must have for the rule to apply anywhere, or under several of which some slot must have
// one; a rule that asks for nothing certain is called for by every phrase.
class CompiledIndex {
 public:
  using Id = CompiledVocabulary::Id;

  static std::uint64_t feature(Id name, Id value) { return (std::uint64_t{name} << 32) | value; }

  // A set of features as one of 64 bits each. Several features may share a bit.
  static std::uint64_t maskOf(Id name, Id value) {
    return std::uint64_t{1} << (((value + name) * 0x9E3779B1u) >> 26);
  }

  // Files rule number `rule`. Rules come in ascending order. No features: called by every phrase.
  void file(std::uint32_t rule, std::span<const std::uint64_t> features);
  // After the last rule, before the first call.
  void finish(std::size_t vocabularyCount);

  // Puts on the agenda what every phrase calls for.
  void callAlways(CompiledAgenda& agenda) const {
    for (const std::uint32_t rule : _always) agenda.add(rule);
  }

  // Puts on the agenda the rules behind `after` that the slot calls for (from `after` on, if it is
  // meant to be the first), and adds the slot's features to `mask`.
  void call(const CompiledPhrase& phrase, const CompiledPhrase::Slot& slot, std::uint32_t from,
            CompiledAgenda& agenda, std::uint64_t& mask) const;

 private:
  struct Range {
    std::uint32_t first = 0;
    std::uint32_t last = 0;  // behind the last one
  };

  void _call(Range range, std::uint32_t from, CompiledAgenda& agenda) const;
  void _callByAttributes(const CompiledPhrase& phrase, const CompiledPhrase::Slot& slot,
                         std::uint32_t from, CompiledAgenda& agenda, std::uint64_t& mask) const;

  std::vector<std::uint32_t> _always;
  std::vector<std::uint32_t> _rules;                      // all that is filed, feature by feature
  std::vector<Range> _byWord;                             // by content
  std::unordered_map<std::uint64_t, Range> _byAttribute;  // by any other feature
  std::vector<std::pair<std::uint64_t, std::uint32_t>> _unsorted;  // until finish()
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_COMPILED_INDEX_H_
