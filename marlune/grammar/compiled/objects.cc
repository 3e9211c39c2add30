#include "marlune/grammar/compiled/objects.h"

#include <string>
#include <utility>

#include "marlune/grammar/base/content_comparison.h"
#include "marlune/grammar/model/attribute_dictionary.h"
#include "marlune/grammar/model/cell.h"

namespace marlune {

bool CompiledObjects::read(const SlotArray& objects, CompiledPhrase& phrase) {
  std::unordered_map<const Slot*, CompiledPhrase::Slot> known;
  for (const CompiledPhrase::Slot& slot : phrase.slots()) {
    if (const Slot* object = _objectOf(slot).get()) known.try_emplace(object, slot);
  }
  phrase.slots().clear();
  for (const std::shared_ptr<Slot>& object : objects) {
    const auto [place, isNew] = known.try_emplace(object.get());
    if (isNew) {
      const Cell* cell = object->_cellOrNull().get();
      if (!cell || !_read(*cell, phrase, place->second)) return false;
      _objectOf(place->second) = object;
    }
    phrase.slots().push_back(place->second);
  }
  return true;
}

bool CompiledObjects::_read(const Cell& cell, CompiledPhrase& phrase, CompiledPhrase::Slot& slot) {
  slot = phrase.slot(cell.type());
  if (!cell.attributes()) return true;
  for (const auto& [name, value] : cell.attributes()->entries()) {
    const std::string* text = value.asString();
    if (!text || contentComparisonOf(*name) != ContentComparison::none) return false;
    if (!phrase.set(slot, phrase.idOfName(*name), phrase.idOf(*text))) return false;
  }
  return true;
}

SlotArray CompiledObjects::write(const CompiledPhrase& phrase) {
  SlotArray objects;
  objects.reserve(phrase.slots().size() + 2);  // room for blanks
  for (const CompiledPhrase::Slot& slot : phrase.slots()) {
    std::shared_ptr<Slot>& object = _objectOf(slot);
    if (!object) object = _made(phrase, slot);
    objects.push_back(object);
  }
  return objects;
}

std::shared_ptr<SimpleSlot> CompiledObjects::_made(const CompiledPhrase& phrase,
                                                   const CompiledPhrase::Slot& slot) {
  if (slot.type == CellTypeBlank) return SimpleSlot::blank();
  if (slot.type == CellTypeWildcard) return SimpleSlot::empty();
  if (slot.attributeCount == 0 && slot.content != Vocabulary::kAbsent) {
    return SimpleSlot::initWithCell(
        Cell::initWithContentString(std::string(phrase.text(slot.content))));
  }
  AttributeDictionary attributes;
  attributes.reserve(slot.attributeCount);
  for (const CompiledPhrase::Attribute& each : phrase.attributesOf(slot)) {
    attributes.setValueForKey(phrase.text(each.value), phrase.text(each.name));
  }
  return SimpleSlot::initWithCell(Cell::initWithAttributesDictionary(attributes));
}

std::shared_ptr<Slot>& CompiledObjects::_objectOf(const CompiledPhrase::Slot& slot) {
  if (slot.identity >= _byIdentity.size()) _byIdentity.resize(slot.identity + 1);
  return _byIdentity[slot.identity];
}

}  // namespace marlune
