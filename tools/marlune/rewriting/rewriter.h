#ifndef MARLUNE_TOOLS_MARLUNE_REWRITING_REWRITER_H_
#define MARLUNE_TOOLS_MARLUNE_REWRITING_REWRITER_H_

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "marlune/grammar/parser.h"
#include "marlune/workbench/derivation/grammar_walk.h"
#include "tools/marlune/input/phrase_input.h"

namespace marlune::tool {

// One grammar from a grammar file, ready to rewrite phrases.
class Rewriter {
 public:
  // Throws InputError, with the file and the cause, if the file cannot be read, if the grammar is
  // broken, or if the file has no grammar of that name. Warnings about the grammar are logged.
  Rewriter(const std::string& path, const std::string& name);

  // Throws PhraseError if a rule stopped because the phrase would have become too long.
  Words rewritten(const Words& words) const;

  // What each rule does to the words. The grammar's errors are part of the result and are not
  // logged.
  GrammarWalk walkOf(const Words& words) const;

  // Everything the grammar logs while it rewrites the words with its trace key on. Every line ends
  // with a line feed.
  std::string rawTraceOf(const Words& words) const;

 private:
  std::unique_ptr<Parser> _parser;
};

// Throws PhraseError if a rule stopped because the phrase would have become too long.
void requireWithinLimits(const std::optional<Failure>& unfinished);

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_REWRITING_REWRITER_H_
