#ifndef MARLUNE_GRAMMAR_PARSER_H_
#define MARLUNE_GRAMMAR_PARSER_H_

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "marlune/grammar/model/grammar_part.h"
#include "marlune/grammar/model/simple_slot_sequence.h"
#include "marlune/platform/value.h"

namespace marlune {

class CompiledGrammar;
class GrammarFile;

// The rewriting grammar as an app uses it: one grammar of a grammar file, made ready; words in,
// rewritten words out. A file is read once in a process; all parsers on it share its tree.
//
// Words are compared byte by byte, as the grammar file holds them. Pass words in Unicode's normal
// form C (NFC), and write grammars in it: a letter with a separate mark is another word.
//
// Where memory runs out, std::bad_alloc leaves to the caller: no parser was made, the one at hand
// keeps its grammar, and the same call may be made again. While a file is being read it does not
// leave: the file then counts as one that cannot be read, until it is read again.
//
// Threads: a parser is used by one thread at a time. Different parsers, on the same file too, may
// be made and used by several threads at once, as may the static functions on trees of the caller's
// own. The tree that grammarsPlist() and loadGrammarsFromPlistAtPath() give out is shared: reading
// or changing it is not safe while another thread makes a parser on the same file or calls
// setGrammar(), which write into it.
class Parser {
 public:
  ~Parser();

  // The grammar that the dot-notation name selects in the file. A file that cannot be read and a
  // name that selects nothing give a parser without a grammar, which answers nullptr to every
  // phrase. GrammarError when the file's inserts or the grammar are broken.
  static std::unique_ptr<Parser> initWithPlistAtPath(const std::string& path,
                                                     std::optional<std::string_view> grammar);

  // The file's tree, inserts resolved: of the process's cache, or read and cached. Absent when the
  // file cannot be read, with a line straight to the system log; nothing is cached then, nor when
  // a GrammarError leaves.
  static Value loadGrammarsFromPlistAtPath(const std::string& path);

  // One pass over the branch: replaces every directive in its dictionaries, at any depth, by a
  // one-level copy of the chunk that it names in the original. Whether there was any.
  static bool insertStatementsFromOriginal(const Value& original, const Value& intoBranch);

  // The value at the path from the tree's root; absent when a key is missing, the tree itself when
  // the path is absent. GrammarError when a key is looked up in something that is present and no
  // dictionary; std::out_of_range for an empty array of keys.
  static Value retrievePlistForStringInDotNotation(std::optional<std::string_view> path,
                                                   const Value& from);
  static Value retrievePlistForPathArray(std::optional<std::span<const std::string>> path,
                                         const Value& from);

  // Switches to another grammar of the file; an absent name changes nothing.
  void setGrammar(std::optional<std::string_view> name);

  // The words as a phrase with a blank at each end, rewritten. nullptr without a grammar.
  std::shared_ptr<SimpleSlotSequence> resultOfRulesAppliedToStrings(
      const std::vector<std::string>& strings) const;
  std::shared_ptr<SimpleSlotSequence> resultOfRulesAppliedTo(
      const SimpleSlotSequence& phrase) const;

  // Never filled: always nullptr.
  std::shared_ptr<const std::vector<std::string>> productionRules() const { return nullptr; }
  bool debugging() const { return _debugging; }  // true; for callers

  // The file's tree, and the root of the grammar's objects, nullptr without a grammar. Both take
  // much memory, are made at the first call and kept from then on; hasGrammar() costs nothing. The
  // objects are for reading: phrases are rewritten by a compiled copy of the grammar, so a change
  // to an object shows only while the trace is on, or not at all.
  const Value& grammarsPlist() const;
  const std::shared_ptr<GrammarPart>& theGrammar() const;
  bool hasGrammar() const { return _compiled != nullptr; }

 private:
  Parser();

  bool _worksCompiled() const;

  GrammarFile* _file = nullptr;  // the process's; null when it cannot be read
  bool _debugging = false;
  std::unique_ptr<CompiledGrammar> _compiled;  // null without a grammar
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_PARSER_H_
