#ifndef MARLUNE_TESTS_SUPPORT_DENSE_LISTS_H_
#define MARLUNE_TESTS_SUPPORT_DENSE_LISTS_H_

#include <cstddef>
#include <string>
#include <vector>

#include "support/binary_list.h"

namespace marlune {

// Binary lists that need much more memory than their files, of the kinds that programs write: no
// container occurs twice, and equal texts and numbers are one object.

inline std::string denseRules(std::size_t count) {
  BinaryList list;
  const auto text = [&](const char* word) { return list.addText(word); };
  std::vector<std::size_t> names, rules;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t lhs =
        list.addDictionary({text("_significantSlots")}, {list.addArray({text("km")})});
    rules.push_back(list.addDictionary({text("_lhs"), text("_order"), text("_rhs")},
                                       {lhs, text("5"), list.addArray({text("kilometers")})}));
    names.push_back(list.addText("Rule" + std::to_string(i)));
  }
  return list.file(list.addDictionary({text("Main")}, {list.addDictionary(names, rules)}));
}

inline std::string denseRows(std::size_t rows, std::size_t columns) {
  BinaryList list;
  std::vector<std::size_t> keys, values, objects;
  for (std::size_t i = 0; i < columns; ++i) {
    keys.push_back(list.addText("column" + std::to_string(i)));
    values.push_back(list.addText("value" + std::to_string(i)));
  }
  for (std::size_t i = 0; i < rows; ++i) objects.push_back(list.addDictionary(keys, values));
  return list.file(list.addArray(objects));
}

inline std::string denseTexts(std::size_t count) {
  BinaryList list;
  std::vector<std::size_t> keys;
  for (std::size_t i = 0; i < count; ++i) keys.push_back(list.addText(std::to_string(i)));
  return list.file(list.addDictionary(keys, std::vector(count, keys.front())));
}

// Object 0 is a number and object 1 an array of references to it, one byte each.
inline std::string denseNumbers(std::size_t count) {
  const std::string bytes = "bplist00\x10\x05\xaf\x12" + BinaryList::bigEndian(count, 4);
  return bytes + std::string(count, '\0') + std::string("\x08\x0a\0\0\0\0\0\0\1\1", 10) +
         BinaryList::bigEndian(2, 8) + BinaryList::bigEndian(1, 8) +
         BinaryList::bigEndian(bytes.size() + count, 8);
}

}  // namespace marlune

#endif  // MARLUNE_TESTS_SUPPORT_DENSE_LISTS_H_
