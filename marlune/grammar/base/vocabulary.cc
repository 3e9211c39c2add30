#include "marlune/grammar/base/vocabulary.h"

#include <algorithm>

#include "marlune/grammar/base/special_characters.h"
#include "marlune/util/open_addressing.h"
#include "marlune/util/text_hash.h"

namespace marlune {

Vocabulary::Vocabulary() : _ends{0}, _table(64) {
  add("");
  add(SpecialCharacters::contentKey());
}

Vocabulary::Id Vocabulary::add(std::string_view text) {
  const std::uint32_t hash = textHash(text);
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
  return _table[_placeOf(text, textHash(text))].id;
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
  return slotFor(hash, _table.size(), [&](std::size_t place) {
    const Entry& entry = _table[place];
    return entry.id == kAbsent || (entry.hash == hash && this->text(entry.id) == text);
  });
}

void Vocabulary::_grow() {
  std::vector<Entry> old(_table.size() * 2);
  old.swap(_table);
  for (const Entry& entry : old) {
    if (entry.id != kAbsent) _table[_placeOf(text(entry.id), entry.hash)] = entry;
  }
}

}  // namespace marlune
