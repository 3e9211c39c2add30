#include "marlune/grammar/base/vocabulary.h"

#include <algorithm>
#include <cstring>

#include "marlune/grammar/base/special_characters.h"

namespace marlune {
namespace {

constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15;

// Eight bytes per step: most words take one or two.
std::uint32_t hashOf(std::string_view text) {
  std::uint64_t hash = text.size() * kMultiplier;
  while (!text.empty()) {
    std::uint64_t chunk = 0;
    const std::size_t length = text.size() < 8 ? text.size() : 8;
    std::memcpy(&chunk, text.data(), length);
    hash = (hash ^ chunk) * kMultiplier;
    hash ^= hash >> 32;
    text.remove_prefix(length);
  }
  return static_cast<std::uint32_t>(hash);
}

}  // namespace

Vocabulary::Vocabulary() : _ends{0}, _table(64) {
  add("");
  add(SpecialCharacters::contentKey());
}

Vocabulary::Id Vocabulary::add(std::string_view text) {
  const std::uint32_t hash = hashOf(text);
  std::size_t place = _placeOf(text, hash);
  if (_table[place].id != kAbsent) return _table[place].id;
  if (2 * count() > _table.size()) {
    _grow();
    place = _placeOf(text, hash);
  }
  const Id id = static_cast<Id>(count());
  _texts += text;
  _longest = std::max(_longest, text.size());
  _ends.push_back(static_cast<std::uint32_t>(_texts.size()));
  _table[place] = {hash, id};
  return id;
}

Vocabulary::Id Vocabulary::find(std::string_view text) const {
  return _table[_placeOf(text, hashOf(text))].id;
}

void Vocabulary::shrinkToFit() {
  _texts.shrink_to_fit();
  _ends.shrink_to_fit();
}

void Vocabulary::finish() {
  shrinkToFit();
  _table = {};
}

// The index of `text` in the table, or of the free place where it belongs.
std::size_t Vocabulary::_placeOf(std::string_view text, std::uint32_t hash) const {
  const std::size_t mask = _table.size() - 1;
  std::size_t place = hash & mask;
  while (_table[place].id != kAbsent &&
         (_table[place].hash != hash || this->text(_table[place].id) != text)) {
    place = (place + 1) & mask;
  }
  return place;
}

void Vocabulary::_grow() {
  std::vector<Entry> old(_table.size() * 2);
  old.swap(_table);
  for (const Entry& entry : old) {
    if (entry.id != kAbsent) _table[_placeOf(text(entry.id), entry.hash)] = entry;
  }
}

}  // namespace marlune
