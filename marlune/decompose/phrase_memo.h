#ifndef MARLUNE_DECOMPOSE_PHRASE_MEMO_H_
#define MARLUNE_DECOMPOSE_PHRASE_MEMO_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "marlune/decompose/decomposition.h"

namespace marlune {

// A second-level cache of answers to whole phrases, keyed by the words: a repeated phrase needs no
// key.
//
// Words are packed into numbers, eight bytes each, and compared as such. A word of up to seven
// bytes is one number with its size in the highest byte; a longer one is preceded by its size.
class PhraseMemo {
 public:
  // A pointer to the list stored for the phrase, which may be null; nullptr when none was stored.
  // Valid until the next `add` or `clear`. Allocates only for a phrase longer than any before.
  const Decomposition* find(std::span<const std::string> words);

  // Stores the list for the phrase and replaces an earlier one.
  void add(std::span<const std::string> words, Decomposition files);

  void clear();

 private:
  struct Phrase {
    std::uint64_t hash = 0;
    std::size_t begin = 0;  // index of its packed words in _words
    std::size_t size = 0;
    Decomposition files;
  };
  static constexpr std::uint32_t kNone = 0xffffffff;

  void _pack(std::span<const std::string> words);
  std::size_t _slotOf(std::uint64_t hash) const;
  void _grow();

  std::vector<std::uint64_t> _packed;  // the phrase looked up, in the first _packedSize numbers
  std::size_t _packedSize = 0;
  std::vector<std::uint64_t> _words;  // the packed words of all phrases
  std::vector<Phrase> _phrases;
  std::vector<std::uint32_t> _slots = std::vector<std::uint32_t>(16, kNone);  // at most half used
};

}  // namespace marlune

#endif  // MARLUNE_DECOMPOSE_PHRASE_MEMO_H_
