#ifndef MARLUNE_GRAMMAR_MODEL_ATTRIBUTE_DICTIONARY_H_
#define MARLUNE_GRAMMAR_MODEL_ATTRIBUTE_DICTIONARY_H_

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "marlune/grammar/model/attribute_value.h"
#include "marlune/platform/value.h"
#include "marlune/platform/visibility.h"

namespace marlune {

// The attributes of a cell: names and values in the order in which they were first set, as in the
// file. Names are unique. Look-ups are linear, since a cell has only a few attributes.
class MARLUNE_API AttributeDictionary {
 public:
  using Name = std::shared_ptr<const std::string>;
  using Entry = std::pair<Name, AttributeValue>;  // the name is never null

  AttributeDictionary() = default;

  // A copy of the dictionary that shares keys and text. Values keep their kind: a nested dictionary
  // remains one.
  static std::shared_ptr<AttributeDictionary> fromPlist(const Dictionary& plist);

  // The name "content"; does not allocate.
  static const Name& contentName();

  // nullptr when there is none. The pointer is valid until the dictionary changes.
  const AttributeValue* valueForKey(std::string_view name) const;

  // An existing name keeps its place; a new one goes to the end.
  void setValueForKey(AttributeValue value, std::string_view name);
  void setValueForKey(AttributeValue value, const Name& name);

  const std::vector<Entry>& entries() const { return _entries; }
  std::size_t count() const { return _entries.size(); }
  void reserve(std::size_t entries) { _entries.reserve(entries); }

  std::shared_ptr<AttributeDictionary> oneLevelCopy() const;

  // The same as a plist dictionary, for printing; an AttributeKey is shown as "<AttributeKey>".
  Value asPlist() const;

 private:
  AttributeValue* _find(std::string_view name);

  std::vector<Entry> _entries;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_ATTRIBUTE_DICTIONARY_H_
