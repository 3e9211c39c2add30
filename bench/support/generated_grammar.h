#ifndef MARLUNE_BENCH_SUPPORT_GENERATED_GRAMMAR_H_
#define MARLUNE_BENCH_SUPPORT_GENERATED_GRAMMAR_H_

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "marlune/platform/value.h"

namespace marlune {

// A grammar of as many rules as one likes, of the kinds that announcements are made with: words
// in context, contractions, alternatives, attributes laid over and asked for, choices by a word,
// repetitions in a context, wildcards, rules that repeat. Twenty rules make a directory. The
// vocabulary grows with the grammar: about two words for three rules, the early ones in more
// rules than the late ones.
class GeneratedGrammar {
 public:
  GeneratedGrammar(std::size_t rules, std::uint32_t seed);

  // The file's root; the grammar is under "Main".
  const Value& file() const { return _file; }

  // Words that some rules apply to (about one in four words is rewritten), the same for the same
  // seed.
  std::vector<std::string> phrase(std::size_t words, std::uint32_t seed) const;

  // Words that the grammar knows in an order that no rule applies to.
  std::vector<std::string> untouchedPhrase(std::size_t words, std::uint32_t seed) const;

 private:
  Value _rule(std::size_t number);
  std::string _word();

  std::mt19937 _random;
  std::vector<std::string> _words;
  std::vector<std::vector<std::string>> _inputs;  // by rule: words that it applies to
  Value _file;
};

}  // namespace marlune

#endif  // MARLUNE_BENCH_SUPPORT_GENERATED_GRAMMAR_H_
