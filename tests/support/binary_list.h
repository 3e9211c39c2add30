#ifndef MARLUNE_TESTS_SUPPORT_BINARY_LIST_H_
#define MARLUNE_TESTS_SUPPORT_BINARY_LIST_H_

#include <bit>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "marlune/platform/value.h"

namespace marlune {

// Builds a binary property list from objects, valid or not. References take two bytes, offsets
// four.
class BinaryList {
 public:
  // Adds an object in its encoded form; returns its number.
  std::size_t add(std::string bytes) {
    _objects.push_back(std::move(bytes));
    return _objects.size() - 1;
  }

  std::size_t addArray(const std::vector<std::size_t>& references) {
    return add(_counted('\xa0', references.size()) + _references(references));
  }

  std::size_t addDictionary(const std::vector<std::size_t>& keys,
                            const std::vector<std::size_t>& values) {
    return add(_counted('\xd0', keys.size()) + _references(keys) + _references(values));
  }

  // ASCII only; equal texts become one object.
  std::size_t addText(const std::string& text) {
    const auto [entry, isNew] = _texts.try_emplace(text, _objects.size());
    if (isNew) add(_counted('\x50', text.size()) + text);
    return entry->second;
  }

  // Does not support data and dates.
  std::size_t addValue(const Value& value) {
    std::vector<std::size_t> keys, values;
    switch (value.kind()) {
      case Value::Kind::dictionary:
        for (const auto& [key, each] : value.asDictionary()->entries()) {
          keys.push_back(addText(*key));
          values.push_back(addValue(each));
        }
        return addDictionary(keys, values);
      case Value::Kind::array:
        for (const Value& each : value.asArray()->elements()) values.push_back(addValue(each));
        return addArray(values);
      case Value::Kind::string:
        return addText(*value.asString());
      case Value::Kind::integer:
        return add('\x13' + bigEndian(static_cast<std::uint64_t>(value.int64()), 8));
      case Value::Kind::real:
        return add('\x23' + bigEndian(std::bit_cast<std::uint64_t>(value.realValue()), 8));
      default:
        return add(value.booleanValue() ? "\x09" : "\x08");
    }
  }

  std::string file(std::size_t root) const {
    std::string bytes = "bplist00", table;
    for (const std::string& object : _objects) {
      table += bigEndian(bytes.size(), 4);
      bytes += object;
    }
    const std::size_t tableOffset = bytes.size();
    return bytes + table + std::string("\0\0\0\0\0\0\4\2", 8) + bigEndian(_objects.size(), 8) +
           bigEndian(root, 8) + bigEndian(tableOffset, 8);
  }

  static std::string bigEndian(std::uint64_t number, std::size_t bytes) {
    std::string text;
    for (std::size_t i = bytes; i-- > 0;) text += static_cast<char>(number >> (8 * i) & 0xff);
    return text;
  }

 private:
  static std::string _counted(char marker, std::size_t count) {
    if (count < 15) return {static_cast<char>(marker | static_cast<char>(count))};
    return static_cast<char>(marker | '\xf') + ('\x12' + bigEndian(count, 4));
  }

  static std::string _references(const std::vector<std::size_t>& objects) {
    std::string text;
    for (const std::size_t object : objects) text += bigEndian(object, 2);
    return text;
  }

  std::vector<std::string> _objects;
  std::map<std::string, std::size_t> _texts;
};

}  // namespace marlune

#endif  // MARLUNE_TESTS_SUPPORT_BINARY_LIST_H_
