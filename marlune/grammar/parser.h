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
#include "marlune/platform/failure.h"
#include "marlune/platform/value.h"
#include "marlune/platform/visibility.h"

namespace marlune {

class CompiledGrammar;
class GrammarFile;
class RewritingFault;

// The rewriting grammar for an app: one grammar of a grammar file, ready to rewrite the words of
// phrases. The process reads a file once; all parsers on it share its tree.
//
// Words are compared byte by byte, as the grammar file has them. Pass words in Unicode's normal
// form C (NFC), and write grammars in it: a letter with a separate mark is another word.
//
// If memory runs out, std::bad_alloc reaches the caller. A parser either was not created or keeps
// its grammar, and the call may be repeated. The exception is the reading of a file: there the file
// counts as unreadable until it is read again.
//
// Threads: each parser is used by one thread at a time. Several threads may create and use
// different parsers at once, on the same file too, and call the static functions on trees of their
// own. The tree that grammarsPlist() and loadGrammarsFromPlistAtPath() return is shared: do not
// read or change it while another thread creates a parser on the same file or calls setGrammar(),
// which write into it.
class MARLUNE_API Parser {
 public:
  ~Parser();

  // The grammar that the dot-notation name selects in the file. A file that cannot be read, or a
  // name that selects nothing, gives a parser without a grammar, which returns nullptr for every
  // phrase. Throws GrammarError when the file's inserts or the grammar are broken.
  static std::unique_ptr<Parser> initWithPlistAtPath(const std::string& path,
                                                     std::optional<std::string_view> grammar);

  // The file's tree, inserts resolved, from the process's cache; read and cached if it is not
  // there. Absent, after a line straight to the system log, when the file cannot be read. Nothing
  // is cached then, nor when a GrammarError is thrown.
  static Value loadGrammarsFromPlistAtPath(const std::string& path);

  // One pass over the branch: replaces every directive in its dictionaries, at any depth, by a
  // one-level copy of the chunk that it names in the original. Returns whether there was any.
  static bool insertStatementsFromOriginal(const Value& original, const Value& intoBranch);

  // The value at the path from the tree's root. Absent when a key is missing; the tree itself when
  // the path is absent. Throws GrammarError when a key is looked up in a present value that is not
  // a dictionary, and std::out_of_range for an empty array of keys.
  static Value retrievePlistForStringInDotNotation(std::optional<std::string_view> path,
                                                   const Value& from);
  static Value retrievePlistForPathArray(std::optional<std::span<const std::string>> path,
                                         const Value& from);

  // Switches to another grammar of the file. An absent name changes nothing.
  void setGrammar(std::optional<std::string_view> name);

  // The words as a phrase with a blank at each end, rewritten. nullptr without a grammar.
  std::shared_ptr<SimpleSlotSequence> resultOfRulesAppliedToStrings(
      const std::vector<std::string>& strings) const;
  std::shared_ptr<SimpleSlotSequence> resultOfRulesAppliedTo(
      const SimpleSlotSequence& phrase) const;

  // Why the last phrase was not rewritten to the end, although there is a result: a rule was left
  // because the phrase would have grown too large, or a repeating rule was stopped because it would
  // not end. Of several reasons the first. A line was logged for each.
  const std::optional<Failure>& whyUnfinished() const { return _unfinished; }
  // The name of the rule in which that reason arose; empty if it has none.
  const std::string& ruleLeftUnfinished() const { return _unfinishedRule; }

  // Always nullptr.
  std::shared_ptr<const std::vector<std::string>> productionRules() const { return nullptr; }
  bool debugging() const { return _debugging; }  // true; for callers

  // The file's tree, and the root of the grammar's objects, which is nullptr without a grammar.
  // Both take much memory, are created at the first call and then kept; hasGrammar() costs nothing.
  // Treat the objects as read-only: a compiled copy of the grammar rewrites phrases, so a change to
  // an object takes effect only while the trace is on, or not at all.
  const Value& grammarsPlist() const;
  const std::shared_ptr<GrammarPart>& theGrammar() const;
  bool hasGrammar() const { return _compiled != nullptr; }

  // Why there is no grammar: the file is unreadable or malformed, the grammar is broken (for which
  // setGrammar has thrown), or the name selects nothing in the file; then the message has the
  // nearest names. Nothing if there is a grammar, or none was named.
  const std::optional<Failure>& whyNoGrammar() const { return _failure; }

 private:
  Parser();

  bool _worksCompiled() const;
  void _setUnfinished(RewritingFault& fault) const;

  std::optional<Failure> _nameFailure(std::string_view name) const;

  GrammarFile* _file = nullptr;  // owned by the process; null when it cannot be read
  std::optional<Failure> _failure;
  mutable std::optional<Failure> _unfinished;
  mutable std::string _unfinishedRule;
  bool _debugging = false;
  std::unique_ptr<CompiledGrammar> _compiled;  // null without a grammar
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_PARSER_H_
