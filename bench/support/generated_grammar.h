#ifndef MARLUNE_BENCH_SUPPORT_GENERATED_GRAMMAR_H_
#define MARLUNE_BENCH_SUPPORT_GENERATED_GRAMMAR_H_

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "marlune/platform/value.h"

namespace marlune {

// A grammar with any number of rules of the kinds used for announcements: words in context,
// contractions, alternatives, attributes set and tested, choices by a word, repetitions in a
// context, wildcards, rules that repeat. Each directory has twenty rules. The vocabulary grows with
// the grammar: about two words for every three rules; more rules use the early words than the late
// ones.
class GeneratedGrammar {
 public:
  GeneratedGrammar(std::size_t rules, std::uint32_t seed);

  // The file's root; the grammar is under "Main".
  const Value& file() const { return _file; }

  // Words that some rules apply to (about one word in four is rewritten). The same seed gives the
  // same words.
  std::vector<std::string> phrase(std::size_t words, std::uint32_t seed) const;

  // Words of the grammar in an order that no rule applies to.
  std::vector<std::string> untouchedPhrase(std::size_t words, std::uint32_t seed) const;

 private:
  Value _rule(std::size_t number);
  std::string _word();

  std::mt19937 _random;
  std::vector<std::string> _words;
  std::vector<std::vector<std::string>> _inputs;  // indexed by rule: words that it applies to
  Value _file;
};

}  // namespace marlune

#endif  // MARLUNE_BENCH_SUPPORT_GENERATED_GRAMMAR_H_
