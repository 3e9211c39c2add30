#include "marlune/decompose/phrase_gaps.h"

#include "marlune/decompose/key_hash.h"

namespace marlune {

PhraseGaps::PhraseGaps(DecompositionMemo& memo, const JoinedKey& key,
                       std::span<const std::string> words)
    : _memo(memo), _key(key), _words(words), _hasBrackets(key.hasBrackets()) {
  _suffixes.resize(words.size() + 1);
  _suffixes.back().firstGap = words.size();
  for (std::size_t from = words.size(); from-- > 0;) _cover(from);
}

std::vector<std::size_t> PhraseGaps::positions() const {
  std::vector<std::size_t> positions;
  std::size_t gap = _suffixes.front().firstGap;
  while (gap < _words.size()) {
    positions.push_back(gap);
    gap = _suffixes[gap + 1].firstGap;
  }
  return positions;
}

// Of two ways that cover equally many words, the one whose first gap is further right is better:
// the gaps after it are the same suffix's.
void PhraseGaps::_cover(std::size_t from) {
  Suffix best{_suffixes[from + 1].covered, from};
  for (std::size_t to = from + 1; to <= _words.size(); ++to) {
    const std::size_t covered = to - from + _suffixes[to].covered;
    const bool isBetter = covered > best.covered ||
                          (covered == best.covered && _suffixes[to].firstGap > best.firstGap);
    if (isBetter && _isCovered(from, to)) best = {covered, _suffixes[to].firstGap};
  }
  _suffixes[from] = best;
}

bool PhraseGaps::_isCovered(std::size_t from, std::size_t to) {
  const std::string_view text = _key.text().substr(_key.offset(from), _key.length(from, to));
  const DecompositionMemo::Id id = _memo.find({text, _key.hash(from, to)});
  const auto state = id == 0 ? DecompositionMemo::State::open : _memo.state(id);
  if (state == DecompositionMemo::State::failed) return false;
  if (state != DecompositionMemo::State::open) return true;
  if (to - from == 1 && !_isRecordedWord(_words[from])) return false;
  return _memo.isRecording(id) || (_hasBrackets && _memo.recordingWithoutBrackets(text) != 0);
}

// A single word needs a recording of its own name, which differs from the key if it has a blank.
bool PhraseGaps::_isRecordedWord(const std::string& word) const {
  return _memo.isRecording(_memo.find({word, key_hash::ofText(word)}));
}

}  // namespace marlune
