#ifndef MARLUNE_GRAMMAR_COMPILED_TABLES_H_
#define MARLUNE_GRAMMAR_COMPILED_TABLES_H_

#include <memory>
#include <vector>

#include "marlune/grammar/base/vocabulary.h"
#include "marlune/grammar/compiled/index.h"
#include "marlune/grammar/compiled/patterns.h"
#include "marlune/grammar/compiled/productions.h"
#include "marlune/grammar/compiled/rule.h"

namespace marlune {

// The result of compiling a grammar. Fixed after compilation, except that `productions` has a
// scratch buffer, so only one thread may use the tables at a time.
struct CompiledTables {
  std::shared_ptr<Vocabulary> vocabulary = std::make_shared<Vocabulary>();  // shared with results
  CompiledPatterns patterns;
  CompiledProductions productions;
  std::vector<CompiledRule> rules;
  CompiledIndex index;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_COMPILED_TABLES_H_
