#include "marlune/decompose/phrase_memo.h"

#include <algorithm>
#include <array>
#include <bit>
#include <utility>

#include "marlune/decompose/key_hash.h"
#include "marlune/util/open_addressing.h"

namespace marlune {

namespace {

constexpr std::size_t kLongest = 7;  // bytes of a word that fits into one number

// REQUIRES: size <= kLongest.
std::uint64_t packShort(const char* word, std::size_t size) {
  const std::uint64_t mark = std::uint64_t{size} << 56;
  if (size >= 4) {
    return mark | key_hash::load32(word) |
           std::uint64_t{key_hash::load32(word + size - 4)} << (8 * (size - 4));
  }
  if (size == 0) return mark;
  const auto at = [word](std::size_t i) {
    return std::uint64_t{static_cast<unsigned char>(word[i])};
  };
  return mark | at(0) | at(size / 2) << (8 * (size / 2)) | at(size - 1) << (8 * (size - 1));
}

std::size_t mostNumbers(const std::string& word) { return word.size() / 8 + 2; }

// The mark of a long word never begins a short one. Returns the number of numbers written.
std::size_t packLong(std::uint64_t* const to, const std::string& word) {
  std::uint64_t* end = to;
  const char* from = word.data();
  std::size_t left = word.size();
  *end++ = std::uint64_t{0xff} << 56 | left;
  for (; left >= 8; from += 8, left -= 8) *end++ = key_hash::load64(from);
  *end++ = packShort(from, left);
  return static_cast<std::size_t>(end - to);
}

// Four lanes, since a multiplication takes several cycles. Each step is invertible within its lane,
// so no information is lost.
std::uint64_t hashOf(const std::uint64_t* numbers, std::size_t count) {
  std::array<std::uint64_t, 4> lanes{count, 1, 2, 3};
  const auto mix = [](std::uint64_t& lane, std::uint64_t number) {
    lane = (std::rotl(lane, 29) ^ number) * 0xa0761d6478bd642fu;
  };
  std::size_t i = 0;
  for (; i + 4 <= count; i += 4) {
    for (std::size_t lane = 0; lane < 4; ++lane) mix(lanes[lane], numbers[i + lane]);
  }
  for (; i < count; ++i) mix(lanes[i % 4], numbers[i]);
  std::uint64_t hash =
      lanes[0] ^ std::rotl(lanes[1], 16) ^ std::rotl(lanes[2], 32) ^ std::rotl(lanes[3], 48);
  mix(hash, hash >> 32);
  return hash ^ hash >> 32;
}

}  // namespace

void PhraseMemo::_pack(std::span<const std::string> words) {
  std::size_t left = words.size();
  if (_packed.size() < left) _packed.resize(left);
  std::size_t size = 0;
  for (const std::string& word : words) {
    if (word.size() <= kLongest) [[likely]] {
      _packed[size++] = packShort(word.data(), word.size());
    } else {
      const std::size_t most = size + mostNumbers(word) + left;  // one each for the rest
      if (_packed.size() < most) _packed.resize(most);
      size += packLong(&_packed[size], word);
    }
    --left;
  }
  _packedSize = size;
}

const Decomposition* PhraseMemo::find(std::span<const std::string> words) {
  _pack(words);
  const std::uint32_t phrase = _slots[_slotOf(hashOf(_packed.data(), _packedSize))];
  return phrase == kNone ? nullptr : &_phrases[phrase].files;
}

void PhraseMemo::add(std::span<const std::string> words, Decomposition files) {
  _pack(words);
  if (2 * (_phrases.size() + 1) > _slots.size()) _grow();
  const std::uint64_t hash = hashOf(_packed.data(), _packedSize);
  const std::size_t at = _slotOf(hash);
  const std::size_t begin = _words.size();
  _words.insert(_words.end(), _packed.begin(),
                _packed.begin() + static_cast<std::ptrdiff_t>(_packedSize));
  _phrases.push_back({hash, begin, _packedSize, std::move(files)});
  _slots[at] = static_cast<std::uint32_t>(_phrases.size() - 1);
}

void PhraseMemo::clear() {
  _words.clear();
  _phrases.clear();
  _slots.assign(_slots.size(), kNone);
}

// The slot of the packed phrase, or the free slot in which to put it.
std::size_t PhraseMemo::_slotOf(std::uint64_t hash) const {
  return slotFor(static_cast<std::size_t>(hash), _slots.size(), [&](std::size_t at) {
    if (_slots[at] == kNone) return true;
    const Phrase& phrase = _phrases[_slots[at]];
    return phrase.hash == hash && phrase.size == _packedSize &&
           std::equal(_packed.data(), _packed.data() + _packedSize, _words.data() + phrase.begin);
  });
}

[[gnu::cold]] void PhraseMemo::_grow() {
  std::vector<std::uint32_t> slots(2 * _slots.size(), kNone);
  for (std::size_t i = 0; i < _phrases.size(); ++i) {
    const std::size_t at = slotFor(static_cast<std::size_t>(_phrases[i].hash), slots.size(),
                                   [&](std::size_t slot) { return slots[slot] == kNone; });
    slots[at] = static_cast<std::uint32_t>(i);
  }
  _slots = std::move(slots);
}

}  // namespace marlune
