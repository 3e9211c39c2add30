#ifndef MARLUNE_DECOMPOSE_SPLIT_SEARCH_H_
#define MARLUNE_DECOMPOSE_SPLIT_SEARCH_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "marlune/decompose/call_count.h"
#include "marlune/decompose/decomposer_overrides.h"
#include "marlune/decompose/decomposition_memo.h"
#include "marlune/decompose/joined_key.h"
#include "marlune/decompose/stretch_sweep.h"

namespace marlune {

class Decomposer;

// Solves one phrase that the memo cannot answer. A StretchSweep solves most phrases. Where the
// order of calls is observable, this class does what the plain recursion does: for every split,
// from left to right, ask the worker for both halves, and keep the last of the shortest answers. It
// counts the same calls and makes the same delegate calls and log lines in the same order, but
// performs a call only if it reaches a stretch for the first time.
//
// Each stretch [from, to) of words is looked up once. Its file count is then stored in two tables,
// one ordered by first word and one by last word, so that the splits of a stretch are two
// contiguous runs of numbers.
class SplitSearch {
 public:
  // Searches for `decomposer`, which is only passed to its delegate. The decomposer owns all four,
  // and they outlive the search; the delegate may be replaced during a search.
  SplitSearch(Decomposer& decomposer, const std::weak_ptr<DecomposerOverrides>& delegate,
              CallCount& calls, DecompositionMemo& memo)
      : _decomposer(decomposer), _delegate(delegate), _calls(calls), _memo(memo), _sweep(memo) {}

  // A phrase is split only if it has at most this many words and the square of the words times the
  // bytes of its key is at most kMostWork. Every stretch of a phrase is remembered, at about 57
  // bytes each, and where words repeat, the keys of equal stretches are compared.
  static constexpr std::size_t kMostWords = 2000;
  static constexpr std::uint64_t kMostWork = std::uint64_t{1} << 37;

  // Whether a phrase of so many words, whose key has so many bytes, is not split.
  static bool isTooLong(std::uint64_t words, std::uint64_t keyBytes) {
    return words > kMostWords || words * words * keyBytes > kMostWork;
  }

  // The entry that answers `words`; 0 when the phrase would have to be split but is too long, in
  // which case nothing is remembered. `key` is the key of the words, and is swapped for a reusable
  // buffer. REQUIRES: the call for the whole is already counted, and the memo has no answer for it.
  DecompositionMemo::Id run(std::span<const std::string> words, JoinedKey& key,
                            bool isSubsetOfWhole);

  // Whether to reuse the object for the next phrase, which then allocates less.
  bool isWorthKeeping() const;

 private:
  using Id = DecompositionMemo::Id;

  // A stretch whose splits are being tried, and the index of its next worker call: first half,
  // second half of the split after one word, then of the split after two words, and so on.
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

  // A stretch's index in the table ordered by first word, then by last word; and in the table
  // ordered by last word, then by first word.
  std::size_t _byBegin(std::size_t from, std::size_t to) const {
    return from * (2 * _words.size() - from + 1) / 2 + (to - from - 1);
  }
  static std::size_t _byEnd(std::size_t from, std::size_t to) { return to * (to - 1) / 2 + from; }

  Decomposer& _decomposer;
  const std::weak_ptr<DecomposerOverrides>& _delegate;
  CallCount& _calls;
  DecompositionMemo& _memo;
  StretchSweep _sweep;
  std::span<const std::string> _words;
  JoinedKey _key;
  const char* _text = nullptr;  // the key's text, in the memo's copy
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
