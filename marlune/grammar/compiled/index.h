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

// Finds the rules that a phrase calls for. A rule is indexed under a feature (an attribute with a
// value) that a slot must have for the rule to apply anywhere, or under several features of which
// some slot must have one. A rule without a required feature is called by every phrase.
class CompiledIndex {
 public:
  using Id = Vocabulary::Id;

  static std::uint64_t feature(Id name, Id value) { return (std::uint64_t{name} << 32) | value; }

  // A set of features as a 64-bit mask, one bit each. Several features may share a bit.
  static std::uint64_t maskOf(Id name, Id value) {
    return std::uint64_t{1} << (((value + name) * 0x9E3779B1u) >> 26);
  }

  // Indexes rule number `rule` under the features; with none, every phrase calls it. Rules must
  // come in ascending order.
  void file(std::uint32_t rule, std::span<const std::uint64_t> features);
  // Call after the last rule and before the first call.
  void finish(std::size_t vocabularyCount);

  // Adds to the agenda the rules that every phrase calls.
  void callAlways(CompiledAgenda& agenda) const {
    for (const std::uint32_t rule : _always) agenda.add(rule);
  }

  // Adds to the agenda the rules numbered `from` or higher that the slot calls for, and adds the
  // slot's features to `mask`.
  void call(const CompiledPhrase& phrase, const CompiledPhrase::Slot& slot, std::uint32_t from,
            CompiledAgenda& agenda, std::uint64_t& mask) const;

 private:
  struct Range {
    std::uint32_t first = 0;
    std::uint32_t last = 0;  // one past the last
  };

  void _call(Range range, std::uint32_t from, CompiledAgenda& agenda) const;
  void _callByAttributes(const CompiledPhrase& phrase, const CompiledPhrase::Slot& slot,
                         std::uint32_t from, CompiledAgenda& agenda, std::uint64_t& mask) const;

  std::vector<std::uint32_t> _always;
  std::vector<std::uint32_t> _rules;                      // all entries, grouped by feature
  std::vector<Range> _byWord;                             // indexed by content
  std::unordered_map<std::uint64_t, Range> _byAttribute;  // for every other feature
  std::vector<std::pair<std::uint64_t, std::uint32_t>> _unsorted;  // until finish()
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_COMPILED_INDEX_H_
