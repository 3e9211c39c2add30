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

// A phrase while a compiled grammar rewrites it: an array of small records, texts as numbers. A
// number below the vocabulary's count is a text of the grammar, one above it a text that only this
// phrase has. Such a text may occur under several numbers.
class CompiledPhrase {
 public:
  using Id = CompiledVocabulary::Id;

  struct Attribute {
    Id name = 0;
    Id value = 0;
  };

  // What a slot and its cell hold. Records with the same identity stand for the same slot object.
  struct Slot {
    Id content = 0;                    // kAbsent without a content
    std::uint32_t attributes = 0;      // where its attributes begin among the phrase's
    std::uint16_t attributeCount = 0;  // 0: no attribute but the content, if that is present
    std::uint8_t type = 0;             // a CellType
    std::uint32_t identity = 0;
  };
  static constexpr std::size_t kMaxAttributes = 0xFFFF;
  static constexpr std::size_t kMostRoom = std::size_t{1} << 20;  // attributes

  // Whether an attribute of that name, in a cell that serves as a pattern, is compared with a part
  // of the content. A phrase with such a name has no compiled form.
  static bool isComparison(std::string_view name) {
    return (name.starts_with('#') && name.ends_with('-')) ||
           (name.starts_with('-') && name.ends_with('#'));
  }

  // Starts anew. `vocabulary` must outlive the phrase's use.
  void reset(const CompiledVocabulary& vocabulary);

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
  // it had `more` slots more.
  std::uint64_t mostText(std::size_t more = 0) const {
    return std::uint64_t{_slots.size() + more} * mostAttributes() * 2 *
           std::max(_longest, _vocabulary->longest());
  }

  // No slot of the phrase has or had more attributes.
  std::size_t mostAttributes() const { return _mostAttributes + 1; }

  // Whether the attributes of all slots that the phrase has or had still take little memory.
  bool hasRoom() const { return _attributes.size() <= kMostRoom; }

  // The number of a text of the phrase. Only looked at: `text` must outlive the phrase's use.
  Id idOf(std::string_view text);

  // Of the same name always the same number.
  Id idOfName(std::string_view name);

  // The value of an attribute; kAbsent when the slot lacks it.
  Id valueOf(const Slot& slot, Id name) const;

  // Whether two values are the same text. An absent one counts as the empty text.
  bool equal(Id left, Id right) const;

  // All slots from now on have this identity or a larger one.
  std::uint32_t nextIdentity() const { return _identities; }

  // A new slot (of a new identity) that is not yet part of the phrase.
  Slot slot(CellType type) { return {0, 0, 0, static_cast<std::uint8_t>(type), _identities++}; }
  Slot blank() { return slot(CellTypeBlank); }
  Slot wildcard() { return slot(CellTypeWildcard); }
  Slot word(Id content) { return {content, 0, 0, CellTypeLiteral, _identities++}; }

  // As a cell read from the string: "?" a wildcard, "_E" a blank, any other a word.
  Slot fromString(std::string_view string);

  // A new literal slot that holds what `base` holds, to be changed by `set`; a null base holds
  // nothing. Between the two no other slot may be begun.
  Slot beginOverlay(const Slot* base);
  // False when the slot holds as many attributes as it can. REQUIRES: the value is not kAbsent.
  bool set(Slot& slot, Id name, Id value);

  // Sees to a blank at either end. A single blank is only one end.
  void pad();

  // Whether an earlier state of the phrase, taken as a pattern, matches the phrase's beginning.
  bool matches(std::span<const Slot> earlier) const;

  // The phrase alone, without what rewriting it left behind. Its own texts go into `storage`, which
  // must outlive the copy's use.
  CompiledPhrase kept(std::string& storage) const;

 private:
  Id _keep(Id id, CompiledPhrase& copy, std::vector<Id>& numbers) const;
  void _ownTexts(std::string& storage);
  void _spell(Slot& slot);
  bool _matches(const Slot& pattern, const Slot& target) const;

  const CompiledVocabulary* _vocabulary = nullptr;
  std::vector<Slot> _slots;
  std::vector<Attribute> _attributes;
  std::vector<std::string_view> _unknown;
  std::vector<Id> _unknownNames;
  std::uint32_t _identities = 0;
  std::size_t _longest = 0;         // of the unknown texts
  std::size_t _mostAttributes = 0;  // of any slot so far
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_COMPILED_PHRASE_H_
