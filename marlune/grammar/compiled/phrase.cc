#include "marlune/grammar/compiled/phrase.h"

#include <algorithm>

#include "marlune/grammar/base/padding.h"
#include "marlune/grammar/format/slot_form.h"

namespace marlune {

void CompiledPhrase::reset(const Vocabulary& vocabulary) {
  _vocabulary = &vocabulary;
  _slots.clear();
  _attributes.clear();
  _unknown.clear();
  _unknownNames.clear();
  _identities = 0;
  _longest = 0;
  _mostAttributes = 0;
}

CompiledPhrase::Id CompiledPhrase::idOf(std::string_view text) {
  if (const Id known = _vocabulary->find(text)) return known;
  _unknown.push_back(text);
  _longest = std::max(_longest, text.size());
  return static_cast<Id>(_vocabulary->count() + _unknown.size() - 1);
}

// Only for phrases that are given as objects: optimise it for size.
[[gnu::cold]] CompiledPhrase::Id CompiledPhrase::idOfName(std::string_view name) {
  if (const Id known = _vocabulary->find(name)) return known;
  const auto place = std::find_if(_unknownNames.begin(), _unknownNames.end(),
                                  [&](Id each) { return text(each) == name; });
  if (place == _unknownNames.end()) return _unknownNames.emplace_back(idOf(name));
  return *place;
}

CompiledPhrase::Id CompiledPhrase::valueOf(const Slot& slot, Id name) const {
  if (name == Vocabulary::kContent) return slot.content;
  for (const Attribute& attribute : attributesOf(slot)) {
    if (attribute.name == name) return attribute.value;
  }
  return Vocabulary::kAbsent;
}

bool CompiledPhrase::equal(Id left, Id right) const {
  left = std::max(left, Vocabulary::kEmpty);
  right = std::max(right, Vocabulary::kEmpty);
  if (left == right) return true;
  const Id known = static_cast<Id>(_vocabulary->count());
  return left >= known && right >= known && text(left) == text(right);
}

CompiledPhrase::Slot CompiledPhrase::fromString(std::string_view string) {
  switch (cellFormOf(string)) {
    case CellForm::wildcard:
      return wildcard();
    case CellForm::blank:
      return blank();
    case CellForm::word:
    case CellForm::attributes:
    case CellForm::other:
      break;
  }
  return word(idOf(string));
}

CompiledPhrase::Slot CompiledPhrase::beginOverlay(const Slot* base) {
  Slot slot = word(base ? base->content : Vocabulary::kAbsent);
  if (base && base->attributeCount > 0) {
    slot.attributes = static_cast<std::uint32_t>(_attributes.size());
    slot.attributeCount = base->attributeCount;
    _attributes.resize(_attributes.size() + base->attributeCount);
    std::copy_n(_attributes.begin() + base->attributes, base->attributeCount,
                _attributes.begin() + slot.attributes);
  }
  return slot;
}

bool CompiledPhrase::set(Slot& slot, Id name, Id value) {
  const bool isContent = name == Vocabulary::kContent;
  if (!isContent || slot.attributeCount > 0) {
    if (slot.attributeCount == 0) _spell(slot);
    const auto begin = _attributes.begin() + slot.attributes;
    const auto place = std::find_if(begin, _attributes.end(),
                                    [name](const Attribute& each) { return each.name == name; });
    if (place != _attributes.end()) {
      place->value = value;
    } else {
      if (slot.attributeCount == kMaxAttributes) return false;
      _attributes.push_back({name, value});
      ++slot.attributeCount;
      _mostAttributes = std::max<std::size_t>(_mostAttributes, slot.attributeCount);
    }
  }
  if (isContent) slot.content = value;
  return true;
}

// Starts the attribute list of a slot that had no attribute other than its content.
void CompiledPhrase::_spell(Slot& slot) {
  slot.attributes = static_cast<std::uint32_t>(_attributes.size());
  if (slot.content == Vocabulary::kAbsent) return;
  _attributes.push_back({Vocabulary::kContent, slot.content});
  slot.attributeCount = 1;
}

void CompiledPhrase::pad() {
  addMissingBlanks(
      _slots, [](const Slot& slot) { return slot.type == CellTypeBlank; },
      [this] { return blank(); });
}

bool CompiledPhrase::matches(std::span<const Slot> earlier) const {
  if (earlier.size() > _slots.size()) return false;
  return std::equal(earlier.begin(), earlier.end(), _slots.begin(),
                    [this](const Slot& left, const Slot& right) { return _matches(left, right); });
}

bool CompiledPhrase::_matches(const Slot& pattern, const Slot& target) const {
  if (pattern.identity == target.identity) return true;
  const auto decided = Cell::_matchOfTypes(pattern.type, target.type);
  if (decided) return *decided;
  if (pattern.attributeCount == 0) {
    return pattern.content == Vocabulary::kAbsent || equal(pattern.content, target.content);
  }
  const std::span<const Attribute> wanted = attributesOf(pattern);
  return std::all_of(wanted.begin(), wanted.end(), [&](const Attribute& each) {
    return equal(each.value, valueOf(target, each.name));
  });
}

CompiledPhrase CompiledPhrase::kept(std::string& storage) const {
  CompiledPhrase copy;
  copy._vocabulary = _vocabulary;
  copy._slots = _slots;
  copy._identities = _identities;
  std::vector<Id> numbers(_unknown.size(), Vocabulary::kAbsent);
  for (Slot& slot : copy._slots) {
    slot.content = _keep(slot.content, copy, numbers);
    const std::span<const Attribute> attributes = attributesOf(slot);
    slot.attributes = static_cast<std::uint32_t>(copy._attributes.size());
    for (const Attribute& each : attributes) {
      copy._attributes.push_back(
          {_keep(each.name, copy, numbers), _keep(each.value, copy, numbers)});
    }
  }
  copy._ownTexts(storage);
  return copy;
}

// The number in `copy` of one of this phrase's texts. Each text is stored once.
CompiledPhrase::Id CompiledPhrase::_keep(Id id, CompiledPhrase& copy,
                                         std::vector<Id>& numbers) const {
  const std::size_t known = _vocabulary->count();
  if (id < known) return id;
  Id& number = numbers[id - known];
  if (number == Vocabulary::kAbsent) {
    number = static_cast<Id>(known + copy._unknown.size());
    copy._unknown.push_back(_unknown[id - known]);
  }
  return number;
}

void CompiledPhrase::_ownTexts(std::string& storage) {
  for (const std::string_view text : _unknown) storage += text;
  std::string_view rest = storage;
  for (std::string_view& text : _unknown) {
    text = rest.substr(0, text.size());
    rest.remove_prefix(text.size());
  }
}

}  // namespace marlune
