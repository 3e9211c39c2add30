#ifndef MARLUNE_DECOMPOSE_STRETCH_SWEEP_H_
#define MARLUNE_DECOMPOSE_STRETCH_SWEEP_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "marlune/decompose/decomposition_memo.h"
#include "marlune/decompose/joined_key.h"

namespace marlune {

// Solves one phrase when the call order is unobservable: no delegate, no log lines, and words that
// are determined by their key. Works on the stretches by length. A pass from the longest to the
// shortest finds those that the recursion would reach: the halves of every stretch that neither the
// memo nor a recording answers. A pass from the shortest to the longest then finds their answers.
// Remembers the same answers and counts the same calls as the recursion.
class StretchSweep {
 public:
  static constexpr std::size_t kMostWords = 4000;  // so that sums of counts fit in a Count

  explicit StretchSweep(DecompositionMemo& memo) : _memo(memo) {}

  // Remembers the answer for the whole phrase under the entry `whole`. `text` is the memo's copy of
  // the key's text. REQUIRES: the key is plain and ready for slices, there are 2 to kMostWords
  // words, `whole` is open and no recording says it.
  void run(const JoinedKey& key, const char* text, std::size_t wordCount,
           DecompositionMemo::Id whole);

  // The number of worker calls in the last run, without the one for the whole.
  std::size_t calls() const { return _calls; }

  bool isWorthKeeping() const { return _ids.capacity() <= kCellsWorthKeeping; }

 private:
  using Id = DecompositionMemo::Id;
  using Key = DecompositionMemo::Key;
  using Count = std::int16_t;

  static constexpr std::size_t kCellsWorthKeeping = 1 << 16;

  struct Stretch {
    std::uint32_t from;
    std::uint32_t to;
  };
  struct Searched {
    Stretch stretch;
    Id id;
  };
  struct Split {
    std::uint32_t files;
    std::uint32_t split;  // how many words of the stretch precede the split
  };

  void _makeTables();
  void _growTables(std::size_t cells);
  void _addSearched(const Searched& searched);
  void _reach(std::size_t length);
  bool _isAnsweredWithoutSplit(Id id, const Key& key, std::size_t length);
  void _answer(const Searched& searched);
  Split _bestSplit(std::size_t from, std::size_t to) const;
  void _set(std::size_t from, std::size_t to, Id id);
  void _setCount(std::size_t from, std::size_t to, Id id, Count count);

  Id _id(std::size_t from, std::size_t to) const { return _ids[from * _stride + to]; }

  DecompositionMemo& _memo;
  const JoinedKey* _key = nullptr;
  const char* _text = nullptr;
  bool _hasBrackets = false;
  std::size_t _wordCount = 0;
  std::size_t _stride = 0;
  std::size_t _calls = 0;
  // The fewest files of [from, to): at [from][to - from - 1] and at [to][from].
  std::vector<Count> _countsByBegin;
  std::vector<Count> _countsByEnd;
  std::vector<Id> _ids;
  // Whether a longer stretch with this begin, or with this end, is searched.
  std::vector<std::uint8_t> _isBeginReached;
  std::vector<std::uint8_t> _isEndReached;
  std::vector<Searched> _searched;  // longest first
  std::vector<Stretch> _reached;    // all of one length
  std::vector<Key> _keys;
  std::vector<Id> _found;
};

}  // namespace marlune

#endif  // MARLUNE_DECOMPOSE_STRETCH_SWEEP_H_
