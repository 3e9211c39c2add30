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

// A grammar's tree in flat tables. Rewrites phrases exactly as the tree's root does, many times
// faster: it tries only the rules that the phrase's words call for, and stores the phrase as an
// array of numbers. Results equal those of the tree down to the identity of slot objects, and so do
// the log lines, except that there is no keyed trace. Use the tree while the trace is on.
//
// Rare cases are left to the tree's rules: rules whose matching writes lines; phrases with
// attributes that are not strings; rules that reach outside the phrase, circle, or make it too
// long.
//
// Used from one thread at a time, like the parser.
class CompiledGrammar {
 public:
  // The grammar that the dot-notation name selects in the file, which is packed again afterwards.
  // With `isTraced`, also makes the grammar's objects, since they write the trace of loading.
  // nullptr when the name does not select a dictionary; throws GrammarError when the grammar is
  // broken.
  static std::unique_ptr<CompiledGrammar> initFromFile(GrammarFile& file, std::string_view name,
                                                       bool isTraced);

  // Rewrites the words' blank-buffered phrase. The result's slots are created on demand.
  std::shared_ptr<SimpleSlotSequence> appliedToStrings(const std::vector<std::string>& strings);
  std::shared_ptr<SimpleSlotSequence> appliedTo(const SimpleSlotSequence& phrase);

  // The tree's root, never null. Kept after the first call.
  const std::shared_ptr<GrammarPart>& root() { return _objects->root(); }

  std::size_t ruleCount() const { return _tables.rules.size(); }

 private:
  using Slots = std::vector<CompiledPhrase::Slot>;
  enum class Outcome : unsigned char { unchanged, changed, tooHard };

  // The buffers for rewriting a phrase; reused for the next one.
  struct Work {
    CompiledPhrase phrase;
    CompiledAgenda agenda;
    std::uint64_t mask = 0;  // every feature that the phrase has or had
    std::vector<std::int32_t> occurrences;
    std::uint64_t kleeneSteps = 0;  // of matching with repetitions
    std::uint64_t steps = 0;  // of a repeating rule: at least as many as its object would count
    Slots original, before, replacement;
  };

  // Lends out the work buffers and puts them back. A log that uses the grammar while a rule writes
  // a line finds them taken and gets new ones.
  class Borrowed;

  CompiledGrammar(std::unique_ptr<GrammarObjects> objects, CompiledTables tables);

  // Applies all rules. Returns the phrase if it lost its compiled form during rewriting, else
  // nullptr; the phrase is then in `work`.
  std::shared_ptr<SimpleSlotSequence> _run(Work& work, CompiledObjects& objects) const;
  std::shared_ptr<SimpleSlotSequence> _applyObjects(
      std::uint32_t from, std::shared_ptr<SimpleSlotSequence> phrase) const;
  void _call(Work& work, std::uint32_t from) const;

  Outcome _apply(std::uint32_t number, Work& work) const;
  bool _repeat(std::uint32_t number, Work& work) const;
  bool _rewrite(std::uint32_t number, Work& work) const;

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
