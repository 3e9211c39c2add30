#ifndef MARLUNE_DECOMPOSE_SPLIT_SEARCH_H_
#define MARLUNE_DECOMPOSE_SPLIT_SEARCH_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "marlune/decompose/decomposition_memo.h"
#include "marlune/decompose/joined_key.h"
#include "marlune/decompose/stretch_sweep.h"

namespace marlune {

class Decomposer;

// The work on one phrase that the memo does not know. Mostly a StretchSweep does it. Where the
// order of calls can be told, this does what the plain recursion does (ask the worker for both
// halves of every split, from left to right, and keep the last of the shortest answers), with the
// same calls counted and the same questions and lines in the same order, but makes a call only
// where it would reach a stretch for the first time.
//
// Stretches [from, to) of words are looked up once each; after that their file counts stand in two
// tables, by first word and by last, so that the splits of a stretch are two runs of numbers.
class SplitSearch {
 public:
  SplitSearch(Decomposer& decomposer, DecompositionMemo& memo)
      : _decomposer(decomposer), _memo(memo), _sweep(memo) {}

  // A phrase is split only when it has at most so many words, and the square of the words times
  // the bytes of its key is at most kMostWork. Every stretch of a phrase is remembered, about 57
  // bytes each, and where words repeat, the keys of equal stretches are compared.
  static constexpr std::size_t kMostWords = 2000;
  static constexpr std::uint64_t kMostWork = std::uint64_t{1} << 37;

  // The entry that answers `words`; 0 when the phrase would have to be split and is too long, of
  // which nothing is remembered. `key` is their key, and is swapped for a reusable one.
  // REQUIRES: the call for the whole is already counted, and the memo was asked for it in vain.
  DecompositionMemo::Id run(std::span<const std::string> words, JoinedKey& key,
                            bool isSubsetOfWhole);

  // Whether the next phrase may use the same object, which then allocates less.
  bool isWorthKeeping() const;

 private:
  using Id = DecompositionMemo::Id;

  // A stretch whose splits are being tried, and the next of its worker calls: first half, second
  // half of the split after one word, of the split after two, and so on.
  struct Frame {
    std::size_t from;
    std::size_t to;
    Id id;
    std::size_t nextCall;
  };

  DecompositionMemo::Id _run(std::span<const std::string> words, bool isSubsetOfWhole);
  bool _isUnwatched(Id whole) const;
  bool _isTooLong() const;
  Id _answerOfLongPhrase(bool isSubsetOfWhole);
  Id _enter(DecompositionMemo::Key& key);
  DecompositionMemo::Key _keyOf(std::size_t from, std::size_t to) const;
  Id _answerWithoutSplit(std::size_t from, std::size_t to, Id id, bool isSubsetOfWhole);
  Decomposition _askDelegate(std::string_view key, bool isSubsetOfWhole);
  bool _isRecordedWord(const std::string& word, Id id) const;

  void _makeTables();
  void _open(std::size_t from, std::size_t to);
  void _search(std::size_t from, std::size_t to, Id id);
  void _callOrFinish();
  std::int32_t _fewestFiles(std::size_t from, std::size_t to) const;
  void _finish(const Frame& frame, std::int32_t fewest);
  void _set(std::size_t from, std::size_t to, Id id);
  void _forgetSuperseded();

  // A stretch's place in the table that is ordered by first word, then by last; and in the one
  // ordered by last word, then by first.
  std::size_t _byBegin(std::size_t from, std::size_t to) const {
    return from * (2 * _words.size() - from + 1) / 2 + (to - from - 1);
  }
  static std::size_t _byEnd(std::size_t from, std::size_t to) { return to * (to - 1) / 2 + from; }

  Decomposer& _decomposer;
  DecompositionMemo& _memo;
  StretchSweep _sweep;
  std::span<const std::string> _words;
  JoinedKey _key;
  const char* _text = nullptr;  // the key's, where the memo keeps it
  bool _hasBrackets = false;
  Id _answer = 0;
  std::vector<std::int32_t> _countsByBegin;
  std::vector<std::int32_t> _countsByEnd;
  std::vector<Id> _idsByBegin;
  std::vector<Frame> _frames;
  std::size_t _supersededSeen = 0;
};

}  // namespace marlune

#endif  // MARLUNE_DECOMPOSE_SPLIT_SEARCH_H_
