#ifndef MARLUNE_GRAMMAR_BASE_VOCABULARY_H_
#define MARLUNE_GRAMMAR_BASE_VOCABULARY_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace marlune {

// The texts of a compiled grammar (words, attribute names, attribute values), each with its own
// number, so that comparing two texts means comparing two numbers. Grows only while the grammar is
// compiled; the words of phrases are never added.
class Vocabulary {
 public:
  using Id = std::uint32_t;
  static constexpr Id kAbsent = 0;   // no text
  static constexpr Id kEmpty = 1;    // ""
  static constexpr Id kContent = 2;  // "content"

  Vocabulary();

  // The number of `text`; assigns a new one if it has none.
  Id add(std::string_view text);

  // The number of `text`; kAbsent when the grammar does not contain it.
  Id find(std::string_view text) const;

  // REQUIRES: 0 < id < count(). The view is valid until a text is added.
  std::string_view text(Id id) const {
    return std::string_view(_texts).substr(_ends[id - 1], _ends[id] - _ends[id - 1]);
  }

  // One more than the largest number assigned.
  std::size_t count() const { return _ends.size(); }

  // The bytes of the longest text.
  std::size_t longest() const { return _longest; }

  void shrinkToFit();

  // Frees the table that finds numbers. Afterwards texts are available by number only.
  void finish();

 private:
  struct Entry {
    std::uint32_t hash = 0;
    Id id = kAbsent;
  };

  std::size_t _placeOf(std::string_view text, std::uint32_t hash) const;
  void _grow();

  std::size_t _longest = 0;
  std::string _texts;                // all texts, concatenated
  std::vector<std::uint32_t> _ends;  // indexed by number: where the text ends
  std::vector<Entry> _table;         // open addressing; a power of two, at most half full
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_BASE_VOCABULARY_H_
