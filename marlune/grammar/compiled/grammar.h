#ifndef MARLUNE_GRAMMAR_COMPILED_GRAMMAR_H_
#define MARLUNE_GRAMMAR_COMPILED_GRAMMAR_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "marlune/grammar/compiled/agenda.h"
#include "marlune/grammar/compiled/objects.h"
#include "marlune/grammar/compiled/phrase.h"
#include "marlune/grammar/compiled/tables.h"
#include "marlune/grammar/file/grammar_file.h"
#include "marlune/grammar/model/grammar_objects.h"
#include "marlune/grammar/model/grammar_part.h"

namespace marlune {

// A grammar's tree, laid out flat: does what the tree's root does with a phrase, many times faster.
// It looks only at the rules that the phrase's words call for, and keeps the phrase as an array of
// numbers. Results are those of the tree to the last slot object, and so are the lines written,
// except for the keyed trace, of which there is none: while that is wanted, ask the tree.
//
// What is rare is left to the tree's rules: those whose matching writes lines; phrases with
// attributes that are no strings; rules that reach outside the phrase, circle, or blow it up.
//
// Used from one thread at a time, as the parser is.
class CompiledGrammar {
 public:
  // The grammar that the dot-notation name selects in the file, which is put away afterwards; with
  // `isTraced` its objects are made as well, as they write the trace of loading. nullptr when the
  // name selects no dictionary, GrammarError when the grammar is broken.
  static std::unique_ptr<CompiledGrammar> initFromFile(GrammarFile& file, std::string_view name,
                                                       bool isTraced);

  // As of the words' blank-buffered phrase. The slots are made when they are looked at.
  std::shared_ptr<SimpleSlotSequence> appliedToStrings(const std::vector<std::string>& strings);
  std::shared_ptr<SimpleSlotSequence> appliedTo(const SimpleSlotSequence& phrase);

  // The tree's root, never null. It is there from the first call on.
  const std::shared_ptr<GrammarPart>& root() { return _objects->root(); }

  std::size_t ruleCount() const { return _tables.rules.size(); }

 private:
  using Slots = std::vector<CompiledPhrase::Slot>;
  enum class Outcome : unsigned char { unchanged, changed, tooHard };

  // What a phrase is worked on in; kept for the next one.
  struct Work {
    CompiledPhrase phrase;
    CompiledAgenda agenda;
    std::uint64_t mask = 0;  // of every feature that the phrase has or had
    std::vector<std::int32_t> occurrences;
    std::uint64_t kleeneSteps = 0;  // of matching with repetitions
    std::uint64_t steps = 0;  // of a repeating rule: at least those that its object would count
    Slots original, before, replacement;
  };

  // The work in use, and where it goes back to afterwards: a log that asks the grammar something
  // while a rule writes a line to it finds none and makes one of its own.
  class Borrowed;

  CompiledGrammar(std::unique_ptr<GrammarObjects> objects, CompiledTables tables);

  // Applies all rules. The phrase when it lost its compiled form on the way, else nullptr: then it
  // stands in `work`.
  std::shared_ptr<SimpleSlotSequence> _run(Work& work, CompiledObjects& objects) const;
  std::shared_ptr<SimpleSlotSequence> _applyObjects(
      std::uint32_t from, std::shared_ptr<SimpleSlotSequence> phrase) const;
  void _call(Work& work, std::uint32_t from) const;

  Outcome _apply(std::uint32_t number, Work& work) const;
  bool _repeat(std::uint32_t number, Work& work) const;
  bool _rewrite(std::uint32_t number, Work& work) const;
  const CompiledProductions::Run* _productionFor(
      const CompiledRule& rule, const CompiledPhrase& phrase,
      std::span<const CompiledPhrase::Slot> occurrence) const;

  void _findOccurrences(const CompiledRule& rule, Work& work) const;
  void _findAtAnchor(const CompiledRule& rule, Work& work) const;
  void _findWithKleene(const CompiledRule& rule, Work& work) const;
  bool _matchesAt(const CompiledRule& rule, const CompiledPhrase& phrase, std::size_t start) const;

  std::unique_ptr<GrammarObjects> _objects;
  CompiledTables _tables;
  std::unique_ptr<Work> _work;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_COMPILED_GRAMMAR_H_
