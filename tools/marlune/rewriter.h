#ifndef MARLUNE_TOOLS_MARLUNE_REWRITER_H_
#define MARLUNE_TOOLS_MARLUNE_REWRITER_H_

#include <memory>
#include <string>
#include <vector>

#include "marlune/grammar/parser.h"
#include "tools/marlune/grammar_walk.h"
#include "tools/marlune/phrase_input.h"

namespace marlune::tool {

// One grammar of a grammar file, ready to rewrite phrases.
class Rewriter {
 public:
  // Throws InputError, with the file and the cause, when the file cannot be read, its grammar is
  // broken, or it has none of that name. Warnings about the grammar go to the log.
  Rewriter(const std::string& path, const std::string& name);

  // Throws PhraseError when a rule was stopped because the phrase would have become too long.
  Words rewritten(const Words& words) const;

  // What each rule does to the words. The grammar's errors are in it and not shown otherwise.
  GrammarWalk walkOf(const Words& words) const;

  // All that the grammar logs under its trace key while it rewrites the words, and in any case.
  // Every line ends with a line feed.
  std::string rawTraceOf(const Words& words) const;

 private:
  std::unique_ptr<Parser> _parser;
};

// Throws PhraseError when one of these messages of a grammar's is that a rule was stopped because
// the phrase would have become too long.
void requireNoLimitAmong(const std::vector<std::string>& messages);

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_REWRITER_H_
