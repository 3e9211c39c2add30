#ifndef MARLUNE_BENCH_LIMITS_REFERENCE_LOAD_H_
#define MARLUNE_BENCH_LIMITS_REFERENCE_LOAD_H_

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "marlune/decompose/decomposer.h"
#include "marlune/grammar/parser.h"
#include "support/generated_grammar.h"

namespace marlune {

// The load for measuring the stated limits: phrases of 20 words, a grammar of 300 rules, and a
// voice of 3,000 recordings that can say every rewritten phrase. The voice has every word alone,
// and runs of two to four words from rewritten phrases.
class ReferenceLoad {
 public:
  static constexpr std::size_t kWords = 20;
  static constexpr std::size_t kRules = 300;
  static constexpr std::size_t kRecordings = 3000;

  ReferenceLoad();

  const Parser& parser() const { return *_parser; }
  const std::vector<std::vector<std::string>>& phrases() const { return _phrases; }
  std::unique_ptr<Decomposer> newDecomposer() const;

  // Writes such a grammar to a file in the folder for temporary files and returns its path; the
  // caller removes it.
  static std::string writtenGrammar(std::size_t rules, const std::string& name);

 private:
  std::unique_ptr<Parser> _parser;
  std::vector<std::vector<std::string>> _phrases;
  std::vector<std::string> _recordings;
};

}  // namespace marlune

#endif  // MARLUNE_BENCH_LIMITS_REFERENCE_LOAD_H_
