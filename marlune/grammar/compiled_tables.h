#ifndef MARLUNE_GRAMMAR_COMPILED_TABLES_H_
#define MARLUNE_GRAMMAR_COMPILED_TABLES_H_

#include <memory>
#include <vector>

#include "marlune/grammar/compiled_index.h"
#include "marlune/grammar/compiled_patterns.h"
#include "marlune/grammar/compiled_productions.h"
#include "marlune/grammar/compiled_rule.h"
#include "marlune/grammar/compiled_vocabulary.h"

namespace marlune {

// Everything that compiling a grammar makes. Does not change afterwards.
struct CompiledTables {
  std::shared_ptr<CompiledVocabulary> vocabulary;  // results hold it too
  CompiledPatterns patterns;
  CompiledProductions productions;
  std::vector<CompiledRule> rules;
  CompiledIndex index;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_COMPILED_TABLES_H_
