#ifndef MARLUNE_DECOMPOSE_PHRASE_GAPS_H_
#define MARLUNE_DECOMPOSE_PHRASE_GAPS_H_

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "marlune/decompose/decomposition_memo.h"
#include "marlune/decompose/joined_key.h"

namespace marlune {

// Finds the words of a phrase that no recording covers. Remembers nothing and asks no delegate.
class PhraseGaps {
 public:
  // Both outlive this object. `key` is the key of the words, with its slices prepared.
  PhraseGaps(DecompositionMemo& memo, const JoinedKey& key, std::span<const std::string> words);

  // See Decomposer::uncoveredWordsOf.
  std::vector<std::size_t> positions() const;

 private:
  // The best way to cover the words from one position to the end.
  struct Suffix {
    std::size_t covered = 0;   // words
    std::size_t firstGap = 0;  // the first word left out; the number of words if there is none
  };

  void _cover(std::size_t from);
  bool _isCovered(std::size_t from, std::size_t to);
  bool _isRecordedWord(const std::string& word) const;

  DecompositionMemo& _memo;
  const JoinedKey& _key;
  const std::span<const std::string> _words;
  const bool _hasBrackets;
  std::vector<Suffix> _suffixes;  // by position; the last one is empty
};

}  // namespace marlune

#endif  // MARLUNE_DECOMPOSE_PHRASE_GAPS_H_
