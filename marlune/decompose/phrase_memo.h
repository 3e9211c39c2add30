#ifndef MARLUNE_DECOMPOSE_PHRASE_MEMO_H_
#define MARLUNE_DECOMPOSE_PHRASE_MEMO_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "marlune/decompose/decomposition.h"

namespace marlune {

// The answers to whole phrases once more, found by their words as they stand: a phrase that comes
// again needs no key.
//
// Words are compared as the numbers that they are packed into, eight bytes at a time. One of up to
// seven bytes is one number, its size in the highest byte; a longer one has its size before it.
class PhraseMemo {
 public:
  // The list given for the phrase, null being one; a null pointer when none was. Good until the
  // next `add` or `clear`. Allocates only for a longer phrase than it has seen.
  const Decomposition* find(std::span<const std::string> words);

  // Keeps the list for the phrase, instead of an earlier one.
  void add(std::span<const std::string> words, Decomposition files);

  void clear();

 private:
  struct Phrase {
    std::uint64_t hash = 0;
    std::size_t begin = 0;  // of its packed words, in _words
    std::size_t size = 0;
    Decomposition files;
  };
  static constexpr std::uint32_t kNone = 0xffffffff;

  void _pack(std::span<const std::string> words);
  std::size_t _slotOf(std::uint64_t hash) const;
  void _grow();

  std::vector<std::uint64_t> _packed;  // the phrase being looked up: the first _packedSize of it
  std::size_t _packedSize = 0;
  std::vector<std::uint64_t> _words;  // of all phrases
  std::vector<Phrase> _phrases;
  std::vector<std::uint32_t> _slots = std::vector<std::uint32_t>(16, kNone);  // at most half used
};

}  // namespace marlune

#endif  // MARLUNE_DECOMPOSE_PHRASE_MEMO_H_
