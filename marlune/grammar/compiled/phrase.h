#ifndef MARLUNE_GRAMMAR_COMPILED_PHRASE_H_
#define MARLUNE_GRAMMAR_COMPILED_PHRASE_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "marlune/grammar/base/vocabulary.h"
#include "marlune/grammar/model/cell.h"

namespace marlune {

// A phrase while a compiled grammar rewrites it: an array of small records, with texts as numbers.
// A number below the vocabulary's count is a text of the grammar. A higher number is a text of this
// phrase only; such a text may have several numbers.
class CompiledPhrase {
 public:
  using Id = Vocabulary::Id;

  struct Attribute {
    Id name = 0;
    Id value = 0;
  };

  // The contents of a slot and its cell. Records with the same identity are the same slot object.
  struct Slot {
    Id content = 0;                    // kAbsent without a content
    std::uint32_t attributes = 0;      // index of its first attribute among the phrase's
    std::uint16_t attributeCount = 0;  // 0: no attributes, or only the content
    std::uint8_t type = 0;             // a CellType
    std::uint32_t identity = 0;
  };
  static constexpr std::size_t kMaxAttributes = 0xFFFF;
  static constexpr std::size_t kMostRoom = std::size_t{1} << 20;  // in attributes

  // Clears the phrase. `vocabulary` must outlive the phrase's use.
  void reset(const Vocabulary& vocabulary);

  std::vector<Slot>& slots() { return _slots; }
  const std::vector<Slot>& slots() const { return _slots; }
  std::span<const Attribute> attributesOf(const Slot& slot) const {
    return {_attributes.data() + slot.attributes, slot.attributeCount};
  }

  std::string_view text(Id id) const {
    const std::size_t known = _vocabulary->count();
    return id < known ? _vocabulary->text(id) : _unknown[id - known];
  }

  // An upper bound of the phrase's bytes of text, as SimpleSlotSequence::kMostText counts them, if
  // it had `more` additional slots.
  std::uint64_t mostText(std::size_t more = 0) const {
    return std::uint64_t{_slots.size() + more} * mostAttributes() * 2 *
           std::max(_longest, _vocabulary->longest());
  }

  // An upper bound of the attributes of each slot that the phrase has or had.
  std::size_t mostAttributes() const { return _mostAttributes + 1; }

  // Whether the attributes of all slots that the phrase has or had still fit in kMostRoom.
  bool hasRoom() const { return _attributes.size() <= kMostRoom; }

  // The number of a text of the phrase. The text is not copied and must outlive the phrase's use.
  Id idOf(std::string_view text);

  // The number of a name; the same name always has the same number.
  Id idOfName(std::string_view name);

  // The value of an attribute; kAbsent when the slot lacks it.
  Id valueOf(const Slot& slot, Id name) const;

  // Whether two values are the same text. An absent value counts as the empty text.
  bool equal(Id left, Id right) const;

  // Every slot created from now on has this identity or a larger one.
  std::uint32_t nextIdentity() const { return _identities; }

  // A new slot with a new identity, not yet part of the phrase.
  Slot slot(CellType type) { return {0, 0, 0, static_cast<std::uint8_t>(type), _identities++}; }
  Slot blank() { return slot(CellTypeBlank); }
  Slot wildcard() { return slot(CellTypeWildcard); }
  Slot word(Id content) { return {content, 0, 0, CellTypeLiteral, _identities++}; }

  // Reads a string as a cell does: "?" is a wildcard, "_E" a blank, any other string a word.
  Slot fromString(std::string_view string);

  // A new literal slot with the contents of `base`, to be changed by `set`; empty if base is null.
  // No other slot may be begun before the changes are complete.
  Slot beginOverlay(const Slot* base);
  // Returns false when the slot is full. REQUIRES: the value is not kAbsent.
  bool set(Slot& slot, Id name, Id value);

  // Adds the blanks missing at either end.
  void pad();

  // Whether an earlier state of the phrase, taken as a pattern, matches the phrase's beginning.
  bool matches(std::span<const Slot> earlier) const;

  // A copy without the leftovers of rewriting. The phrase's own texts are copied to `storage`,
  // which must outlive the copy's use.
  CompiledPhrase kept(std::string& storage) const;

 private:
  Id _keep(Id id, CompiledPhrase& copy, std::vector<Id>& numbers) const;
  void _ownTexts(std::string& storage);
  void _spell(Slot& slot);
  bool _matches(const Slot& pattern, const Slot& target) const;

  const Vocabulary* _vocabulary = nullptr;
  std::vector<Slot> _slots;
  std::vector<Attribute> _attributes;
  std::vector<std::string_view> _unknown;
  std::vector<Id> _unknownNames;
  std::uint32_t _identities = 0;
  std::size_t _longest = 0;         // of the texts that the grammar does not have
  std::size_t _mostAttributes = 0;  // of any slot so far
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_COMPILED_PHRASE_H_
