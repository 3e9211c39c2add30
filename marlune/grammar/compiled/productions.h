#ifndef MARLUNE_GRAMMAR_COMPILED_PRODUCTIONS_H_
#define MARLUNE_GRAMMAR_COMPILED_PRODUCTIONS_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "marlune/grammar/base/vocabulary.h"
#include "marlune/grammar/compiled/phrase.h"

namespace marlune {

// All right-hand sides of a compiled grammar, in flat arrays.
class CompiledProductions {
 public:
  using Id = Vocabulary::Id;
  using Slot = CompiledPhrase::Slot;

  static constexpr std::int32_t kNew = -1;  // a new slot, or a value of no matched slot

  struct Run {
    std::uint32_t first = 0;
    std::uint32_t count = 0;
  };

  // One slot of a replacement: a matched slot or a new one, with or without an overlay.
  struct Produced {
    std::int32_t index = kNew;
    bool isOverlaid = false;
    Run settings;
  };

  // One attribute of an overlay: a text, or the value of attribute `value` of matched slot `index`.
  struct Setting {
    Id name = 0;
    Id value = 0;  // the text, or the name to look up
    std::int32_t index = kNew;
  };

  // A value that takes part in a choice.
  struct Reference {
    std::int32_t index = 0;
    Id name = 0;
  };

  // Selects one of several replacements by the joined values of the references.
  struct Choice {
    Run references;
    Id delimiter = 0;
    Run expansions;  // ascending by signature
  };
  struct Expansion {
    Id signature = 0;
    std::uint32_t replacement = 0;
  };

  // The right-hand side of a rule.
  struct Production {
    enum class Kind : unsigned char { replacement, choice };

    Kind kind = Kind::replacement;
    std::uint32_t number = 0;  // in the vector of its kind
  };

  std::vector<Run> replacements;  // of Produced
  std::vector<Choice> choices;
  std::vector<Produced> produced;
  std::vector<Setting> settings;
  std::vector<Reference> references;
  std::vector<Expansion> expansions;

  // The replacement for the matched slots; nullptr when they stay unchanged.
  const Run* replacementFor(const Production& production, const CompiledPhrase& phrase,
                            std::span<const Slot> occurrence, const Vocabulary& vocabulary) const;

  // The steps of selecting it, as ConditionalProduction counts them.
  std::uint64_t stepsOf(const Production& production) const;

  // Appends to `result` the slots that `replacement` makes of the matched ones. Returns false when
  // a cell would have more attributes than a compiled phrase can hold, or the phrase could exceed
  // its limit of text.
  bool append(Run replacement, CompiledPhrase& phrase, std::span<const Slot> occurrence,
              std::vector<Slot>& result) const;

 private:
  const Run* _chosen(const Choice& choice, const CompiledPhrase& phrase,
                     std::span<const Slot> occurrence, const Vocabulary& vocabulary) const;
  Id _signatureOf(const Choice& choice, const CompiledPhrase& phrase,
                  std::span<const Slot> occurrence, const Vocabulary& vocabulary) const;
  bool _overlay(const Produced& each, CompiledPhrase& phrase, std::span<const Slot> occurrence,
                std::vector<Slot>& result) const;

  mutable std::string _joined;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_COMPILED_PRODUCTIONS_H_
