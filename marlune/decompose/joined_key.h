#ifndef MARLUNE_DECOMPOSE_JOINED_KEY_H_
#define MARLUNE_DECOMPOSE_JOINED_KEY_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "marlune/platform/visibility.h"

namespace marlune {

// The decomposition key of a phrase: its words joined with " ", then every " " replaced by "_" and
// every "_[" by "[". The key of any stretch of the words is a slice of the key of the whole phrase,
// which makes it fast. A "_" dropped before a bracket lies between two words or inside one, and so
// never at the edge of a stretch.
//
// When reused, allocates only for a phrase longer than any before.
class JoinedKey {
 public:
  // Replaces the previous key. The words are not kept.
  void join(std::span<const std::string> words);

  std::string_view text() const { return {_text.data(), _size}; }
  std::uint64_t hash() const { return _hash; }

  // Whether the key determines the words: none is empty, contains " " or "_", or begins with "[".
  bool isPlain() const { return _isPlain; }
  bool hasBrackets() const {
    return text().find('[') != std::string_view::npos || text().find(']') != std::string_view::npos;
  }

  // The functions below refer to the stretch [from, to) of words, counted from 0. REQUIRES: from <
  // to; `hash` also requires that `prepareSlices` was called after `join`.
  void prepareSlices();
  std::size_t offset(std::size_t from) const { return _words[from].begin; }
  std::size_t length(std::size_t from, std::size_t to) const {
    return _words[to - 1].end - _words[from].begin;
  }
  std::uint64_t hash(std::size_t from, std::size_t to) const {
    const Word& first = _words[from];
    const Word& last = _words[to - 1];
    return last.hashAtEnd - first.hashAtBegin * _powers[last.piecesAtEnd - first.piecesAtBegin];
  }

 private:
  // A word's position in the text, and the hash of the text before it.
  struct Word {
    std::size_t begin = 0;
    std::size_t end = 0;
    std::uint64_t hashAtBegin = 0;
    std::uint64_t hashAtEnd = 0;
    std::uint32_t piecesAtBegin = 0;
    std::uint32_t piecesAtEnd = 0;
  };

  void _makeRoomFor(std::span<const std::string> words);

  std::vector<char> _text;  // never shrinks: the key is its first `_size` bytes
  std::size_t _size = 0;
  std::uint64_t _hash = 0;
  std::uint32_t _pieces = 0;
  bool _isPlain = true;
  std::vector<Word> _words;
  std::vector<std::uint64_t> _powers;  // of the hash's base
};

// The key as a string of its own.
MARLUNE_INTERNAL_API std::string decompositionKey(std::span<const std::string> words);

}  // namespace marlune

#endif  // MARLUNE_DECOMPOSE_JOINED_KEY_H_
