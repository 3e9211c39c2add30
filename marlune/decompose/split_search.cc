#include "marlune/decompose/split_search.h"

#include <algorithm>
#include <utility>

#include "marlune/decompose/key_hash.h"
#include "marlune/util/tq_utils.h"

namespace marlune {

namespace {

// Stands for an absent count: large enough that no sum with it is accepted or equals a real count.
// The sum of two still fits.
constexpr std::int32_t kCannotBeSaid = 1 << 29;
constexpr std::int32_t kNotReached = -(1 << 30);

constexpr std::size_t kCellsWorthKeeping = 1 << 16;

}  // namespace

bool SplitSearch::isWorthKeeping() const {
  return _idsByBegin.capacity() <= kCellsWorthKeeping && _sweep.isWorthKeeping();
}

DecompositionMemo::Id SplitSearch::run(std::span<const std::string> words, JoinedKey& key,
                                       bool isSubsetOfWhole) {
  // Takes the caller's key, because a delegate may call the decomposer during the search, and gives
  // it back with its capacity, so that joining the next phrase of this length does not allocate.
  std::swap(_key, key);
  const DecompositionMemo::Id answer = _run(words, isSubsetOfWhole);
  std::swap(_key, key);
  return answer;
}

DecompositionMemo::Id SplitSearch::_run(std::span<const std::string> words, bool isSubsetOfWhole) {
  _words = words;
  _supersededSeen = _memo.superseded().size();
  _hasBrackets = _key.hasBrackets();
  DecompositionMemo::Key whole{_key.text(), _key.hash()};
  Id id = _memo.find(whole);
  if (id == 0) {
    if (_isTooLong()) return _answerOfLongPhrase(isSubsetOfWhole);
    id = _enter(whole);
  }
  _text = _memo.text(id).data();

  _answer = _answerWithoutSplit(0, words.size(), id, isSubsetOfWhole);
  if (_answer != 0 || _isTooLong()) return _answer;
  _key.prepareSlices();
  if (_isUnwatched(id)) {
    _sweep.run(_key, _text, words.size(), id);
    _calls.add(_sweep.calls());
    return id;
  }
  _makeTables();
  _search(0, words.size(), id);
  while (!_frames.empty()) _callOrFinish();
  return _answer;
}

// Adds the entry of a key that has none. Afterwards the key refers to the memo's copy of its text.
DecompositionMemo::Id SplitSearch::_enter(DecompositionMemo::Key& key) {
  key.text = {_memo.keep(key.text), key.text.size()};
  return _memo.findOrAdd(key);
}

bool SplitSearch::_isTooLong() const { return isTooLong(_words.size(), _key.text().size()); }

// Answers a long phrase whose key has no entry and hence names no recording. Adds an entry only for
// an answer, because the entry would keep the text.
DecompositionMemo::Id SplitSearch::_answerOfLongPhrase(bool isSubsetOfWhole) {
  DecompositionMemo::Key whole{_key.text(), _key.hash()};
  Decomposition given = _askDelegate(whole.text, isSubsetOfWhole);
  const Id recording = given || !_hasBrackets ? 0 : _memo.recordingWithoutBrackets(whole.text);
  if (!given && recording == 0) return 0;
  const Id id = _enter(whole);
  return given ? _memo.rememberGiven(id, whole, std::move(given))
               : _memo.rememberRecording(id, whole, recording);
}

// Whether the order of the calls is unobservable. An expired delegate may have had the phrase
// answered before it expired, so the entry must still be open.
bool SplitSearch::_isUnwatched(Id whole) const {
  return _key.isPlain() && _words.size() <= StretchSweep::kMostWords && !_calls.isTraced() &&
         _delegate.expired() && _memo.state(whole) == DecompositionMemo::State::open &&
         !TQUtils::isWantedForDefault(ZKPlistNotificationDefault);
}

DecompositionMemo::Key SplitSearch::_keyOf(std::size_t from, std::size_t to) const {
  if (from == 0 && to == _words.size()) return {{_text, _key.text().size()}, _key.hash()};
  return {{_text + _key.offset(from), _key.length(from, to)}, _key.hash(from, to)};
}

// Everything that a worker tries once the memo has no answer, except the split search. Returns the
// entry that now holds the answer, or 0 when a search is needed.
DecompositionMemo::Id SplitSearch::_answerWithoutSplit(std::size_t from, std::size_t to, Id id,
                                                       bool isSubsetOfWhole) {
  const DecompositionMemo::Key key = _keyOf(from, to);
  if (Decomposition given = _askDelegate(key.text, isSubsetOfWhole)) {
    return _memo.rememberGiven(id, key, std::move(given));
  }
  const std::size_t count = to - from;
  if (count == 1 && !_isRecordedWord(_words[from], id)) {
    const Id failed = _memo.rememberFailure(id, key);
    TQUtils::forDefaultLog(ZKPlistNotificationDefault, "Cannot find a sound file for '%@.'",
                           _words[from]);
    return failed;
  }
  if (_memo.isRecording(id)) return _memo.rememberRecording(id, key, id);
  if (_hasBrackets) {
    const Id recording = _memo.recordingWithoutBrackets(key.text);
    if (recording != 0) return _memo.rememberRecording(id, key, recording);
  }
  return count <= 1 ? _memo.rememberFailure(id, key) : 0;
}

// nullptr when there is no delegate or it has no answer.
Decomposition SplitSearch::_askDelegate(std::string_view key, bool isSubsetOfWhole) {
  const auto delegate = _delegate.lock();
  if (!delegate) return nullptr;
  Decomposition answer = delegate->decompositionOf(_decomposer, key, isSubsetOfWhole);
  if (answer) {
    TQUtils::forDefaultLog(ZKPlistNotificationDefault, "delegateSpecifiedDecomposition: %@",
                           *answer);
  }
  return answer;
}

// Here a recording must have the word's own name: a word with a blank differs from its key.
bool SplitSearch::_isRecordedWord(const std::string& word, Id id) const {
  if (word == _memo.text(id)) return _memo.isRecording(id);
  return _memo.isRecording(_memo.find({word, key_hash::ofText(word)}));
}

void SplitSearch::_makeTables() {
  const std::size_t cells = _words.size() * (_words.size() + 1) / 2;
  _countsByBegin.assign(cells, kNotReached);
  _countsByEnd.assign(cells, kNotReached);
  _idsByBegin.resize(cells);
}

// Performs a worker call, already counted, for a part whose cell is not filled.
void SplitSearch::_open(std::size_t from, std::size_t to) {
  Id id = _memo.findOrAdd(_keyOf(from, to));
  if (_memo.state(id) != DecompositionMemo::State::open) return _set(from, to, id);
  const Id answer = _answerWithoutSplit(from, to, id, /*isSubsetOfWhole=*/true);
  if (answer != 0) return _set(from, to, answer);
  _search(from, to, id);
}

void SplitSearch::_search(std::size_t from, std::size_t to, Id id) {
  _forgetSuperseded();
  const Frame frame{from, to, id, 0};
  const std::int32_t fewest = _fewestFiles(from, to);
  // Usually every stretch inside has been reached before, so none of the calls would do anything.
  const bool anyNotReached = fewest < 0;
  if (anyNotReached || _calls.isTraced()) {
    _frames.push_back(frame);
  } else {
    _calls.add(2 * (to - from - 1));
    _finish(frame, fewest);
  }
}

void SplitSearch::_callOrFinish() {
  Frame& frame = _frames.back();
  const auto [from, to, id, call] = frame;
  if (call == 2 * (to - from - 1)) {
    const Frame finished = frame;
    _frames.pop_back();
    return _finish(finished, _fewestFiles(from, to));
  }
  ++frame.nextCall;
  _calls.add(1);
  const std::size_t middle = from + call / 2 + 1;
  const bool isFirstHalf = call % 2 == 0;
  const std::size_t begin = isFirstHalf ? from : middle;
  const std::size_t end = isFirstHalf ? middle : to;
  if (_countsByBegin[_byBegin(begin, end)] < 0) _open(begin, end);
}

// The fewest files over all splits of the stretch; negative if a half has not been reached yet.
std::int32_t SplitSearch::_fewestFiles(std::size_t from, std::size_t to) const {
  const std::int32_t* const first = &_countsByBegin[_byBegin(from, from + 1)];
  const std::int32_t* const second = &_countsByEnd[_byEnd(from + 1, to)];
  std::int32_t fewest = 2 * kCannotBeSaid - 1;
  for (std::size_t i = 0; i < to - from - 1; ++i) fewest = std::min(fewest, first[i] + second[i]);
  return fewest;
}

void SplitSearch::_finish(const Frame& frame, std::int32_t fewest) {
  const auto [from, to, id, call] = frame;
  const DecompositionMemo::Key key = _keyOf(from, to);
  // Only a delegate's answers can give more files than words. Such a split is not taken.
  if (static_cast<std::size_t>(fewest) > to - from) {
    return _set(from, to, _memo.rememberFailure(id, key));
  }
  // Among ties, the longest first half wins.
  std::size_t middle = to - 1;
  while (_countsByBegin[_byBegin(from, middle)] + _countsByEnd[_byEnd(middle, to)] != fewest) {
    --middle;
  }
  _set(from, to,
       _memo.rememberSplit(id, key, _idsByBegin[_byBegin(from, middle)],
                           _idsByBegin[_byBegin(middle, to)]));
}

void SplitSearch::_set(std::size_t from, std::size_t to, Id id) {
  _forgetSuperseded();
  const bool canBeSaid = _memo.state(id) != DecompositionMemo::State::failed;
  const auto limit = static_cast<std::uint32_t>(kCannotBeSaid);
  const auto count =
      canBeSaid ? static_cast<std::int32_t>(std::min(_memo.fileCount(id), limit)) : kCannotBeSaid;
  _countsByBegin[_byBegin(from, to)] = count;
  _countsByEnd[_byEnd(from, to)] = count;
  _idsByBegin[_byBegin(from, to)] = id;
  if (from == 0 && to == _words.size()) _answer = id;
}

// Cells are copies of the memo's entries. A key with a new answer is looked up again. No open frame
// has used the earlier answer, because it did not exist when the frame passed the stretch.
void SplitSearch::_forgetSuperseded() {
  for (; _supersededSeen < _memo.superseded().size(); ++_supersededSeen) {
    const Id superseded = _memo.superseded()[_supersededSeen];
    for (std::size_t from = 0; from < _words.size(); ++from) {
      for (std::size_t to = from + 1; to <= _words.size(); ++to) {
        const std::size_t cell = _byBegin(from, to);
        if (_countsByBegin[cell] < 0 || _idsByBegin[cell] != superseded) continue;
        _countsByBegin[cell] = kNotReached;
        _countsByEnd[_byEnd(from, to)] = kNotReached;
      }
    }
  }
}

}  // namespace marlune
