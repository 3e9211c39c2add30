#include "marlune/decompose/stretch_sweep.h"

#include <algorithm>
#include <cstring>

namespace marlune {

namespace {

// Stands for an absent count: large enough that no sum with it is accepted, small enough that the
// sum of two fits.
constexpr std::int16_t kCannotBeSaid = (1 << 14) - 1;

constexpr std::uint32_t kLastSplit = 0xffff;

// Eight counts fit one vector register of most processors.
constexpr std::int16_t kLanes = 8;
using Lanes __attribute__((vector_size(kLanes * sizeof(std::int16_t)))) = std::int16_t;

Lanes lanesAt(const std::int16_t* counts) {
  Lanes lanes;
  std::memcpy(&lanes, counts, sizeof lanes);
  return lanes;
}

}  // namespace

void StretchSweep::run(const JoinedKey& key, const char* text, std::size_t wordCount, Id whole) {
  _key = &key;
  _text = text;
  _hasBrackets = key.hasBrackets();
  _wordCount = wordCount;
  _calls = 0;
  _makeTables();
  _addSearched({{0, static_cast<std::uint32_t>(wordCount)}, whole});
  for (std::size_t length = wordCount - 1; length > 0; --length) _reach(length);
  // Nothing below allocates, so every stretch that was reached gets its answer.
  for (std::size_t i = _searched.size(); i-- > 0;) _answer(_searched[i]);
}

void StretchSweep::_makeTables() {
  _stride = _wordCount + 1 + std::size_t{kLanes};
  if (_wordCount > _reached.size()) _growTables((_wordCount + 1) * _stride);
  // Cells are written before they are read, except those after a run's end.
  for (std::size_t to = 0; to <= _wordCount; ++to) {
    std::fill_n(&_countsByEnd[to * _stride + to], std::size_t{kLanes}, kCannotBeSaid);
  }
  std::fill_n(_isBeginReached.begin(), _wordCount + 1, 0);
  std::fill_n(_isEndReached.begin(), _wordCount + 1, 0);
  _searched.clear();
}

// Rare: optimise it for size.
[[gnu::cold]] void StretchSweep::_growTables(std::size_t cells) {
  _countsByBegin.resize(cells);
  _countsByEnd.resize(cells);
  _ids.resize(cells);
  _isBeginReached.resize(_wordCount + 1);
  _isEndReached.resize(_wordCount + 1);
  _keys.resize(_wordCount);
  _found.resize(_wordCount);
  _reached.resize(_wordCount);  // last: its size shows that all have grown
}

void StretchSweep::_addSearched(const Searched& searched) {
  _searched.push_back(searched);
  _isBeginReached[searched.stretch.from] = 1;
  _isEndReached[searched.stretch.to] = 1;
}

// Looks up, in one batch, the stretches of this length that are halves of longer ones.
void StretchSweep::_reach(std::size_t length) {
  std::size_t count = 0;
  for (std::size_t from = 0; from + length <= _wordCount; ++from) {
    const std::size_t to = from + length;
    if ((_isBeginReached[from] | _isEndReached[to]) == 0) continue;
    _reached[count] = {static_cast<std::uint32_t>(from), static_cast<std::uint32_t>(to)};
    _keys[count] = {{_text + _key->offset(from), _key->length(from, to)}, _key->hash(from, to)};
    ++count;
  }
  _memo.findOrAdd({_keys.data(), count}, _found.data());
  for (std::size_t i = 0; i < count; ++i) {
    const auto [from, to] = _reached[i];
    const Id id = _found[i];
    if (_memo.state(id) != DecompositionMemo::State::open ||
        _isAnsweredWithoutSplit(id, _keys[i], length)) {
      _set(from, to, id);
    } else {
      _addSearched({_reached[i], id});
    }
  }
}

// As in the recursion, a single word needs a recording of its own.
bool StretchSweep::_isAnsweredWithoutSplit(Id id, const Key& key, std::size_t length) {
  if (_memo.isRecording(id)) {
    _memo.answerWithRecording(id, id);
  } else if (length == 1) {
    _memo.answerWithFailure(id);
  } else {
    const Id recording = _hasBrackets ? _memo.recordingWithoutBrackets(key.text) : 0;
    if (recording == 0) return false;
    _memo.answerWithRecording(id, recording);
  }
  return true;
}

// REQUIRES: all shorter stretches inside it have answers.
void StretchSweep::_answer(const Searched& searched) {
  const auto [from, to] = searched.stretch;
  const Id id = searched.id;
  // The stretch occurred before.
  if (_memo.state(id) != DecompositionMemo::State::open) return _set(from, to, id);
  const std::size_t length = to - from;
  _calls += 2 * (length - 1);
  const auto [files, split] = _bestSplit(from, to);
  // Only a delegate's answers can give more files than words. Such a split is not taken.
  if (files > length) {
    _memo.answerWithFailure(id);
    return _setCount(from, to, id, kCannotBeSaid);
  }
  const std::size_t middle = from + split + 1;
  _memo.answerWithSplit(id, _id(from, middle), _id(middle, to), files);
  _setCount(from, to, id, static_cast<Count>(files));
}

// Among the splits with the fewest files, the one with the longest first half. Every lane keeps its
// own last best split. Reading past the end of a run is harmless: the table by end has no
// count there.
StretchSweep::Split StretchSweep::_bestSplit(std::size_t from, std::size_t to) const {
  const Count* first = &_countsByBegin[from * _stride];
  const Count* second = &_countsByEnd[to * _stride + from + 1];
  Lanes files = Lanes{} + 2 * kCannotBeSaid;
  Lanes splits{};
  Lanes split{0, 1, 2, 3, 4, 5, 6, 7};
  for (std::size_t i = 0; i < to - from - 1; i += kLanes) {
    const Lanes sum = lanesAt(first + i) + lanesAt(second + i);
    const Lanes isBetter = sum <= files;  // each lane is all ones or zero
    files = (files & ~isBetter) | (sum & isBetter);
    splits = (splits & ~isBetter) | (split & isBetter);
    split += kLanes;
  }
  // The same order in a single number: fewer files first, then the later split.
  std::uint32_t best = ~0u;
  for (std::size_t lane = 0; lane < kLanes; ++lane) {
    const auto sum = static_cast<std::uint32_t>(files[lane]);
    best = std::min(best, sum << 16 | (kLastSplit - static_cast<std::uint32_t>(splits[lane])));
  }
  return {best >> 16, kLastSplit - (best & kLastSplit)};
}

void StretchSweep::_set(std::size_t from, std::size_t to, Id id) {
  const bool isSaid = _memo.state(id) != DecompositionMemo::State::failed;
  const std::uint32_t most = kCannotBeSaid;
  _setCount(from, to, id,
            isSaid ? static_cast<Count>(std::min(_memo.fileCount(id), most)) : kCannotBeSaid);
}

void StretchSweep::_setCount(std::size_t from, std::size_t to, Id id, Count count) {
  _countsByBegin[from * _stride + (to - from - 1)] = count;
  _countsByEnd[to * _stride + from] = count;
  _ids[from * _stride + to] = id;
}

}  // namespace marlune
