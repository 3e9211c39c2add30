#ifndef MARLUNE_PLATFORM_VALUE_H_
#define MARLUNE_PLATFORM_VALUE_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

#include "marlune/platform/visibility.h"

namespace marlune {

class Array;
class Dictionary;

// One value of a property list: the content of a grammar file, a preferences file or an overrides
// file. A Value is a small handle. Copying one that holds a dictionary or an array shares that
// container, and every holder may change it. Copying one that holds text shares the text, which
// never changes. The default Value is absent, the result of every look-up that finds nothing.
//
// Threads: any number may read at the same time. While one changes a value or a container, no other
// may use it. The same holds for Dictionary and Array.
class MARLUNE_API Value {
 public:
  enum class Kind : unsigned char {
    absent,
    dictionary,
    array,
    string,
    integer,
    real,
    boolean,
    data,  // raw bytes, kept but never interpreted
    date,  // a point in time; likewise
  };

  Value() = default;

  static Value string(std::string text);
  static Value string(std::shared_ptr<const std::string> text);  // REQUIRES: text is not null
  static Value integer(std::int64_t number);
  static Value real(double number);
  static Value boolean(bool truth);
  static Value data(std::string bytes);
  static Value date(double secondsSince2001);
  static Value dictionary(std::shared_ptr<Dictionary> entries);  // absent when null
  static Value array(std::shared_ptr<Array> elements);           // absent when null

  Kind kind() const;
  bool isAbsent() const { return kind() == Kind::absent; }
  bool isNumber() const;  // integer, real or boolean: all count as numbers in a grammar

  // The container or text of the value; nullptr when the value is of another kind.
  const std::shared_ptr<Dictionary>& asDictionary() const;
  const std::shared_ptr<Array>& asArray() const;
  const std::string* asString() const;
  std::shared_ptr<const std::string> sharedString() const;
  const std::string* asData() const;

  // Numbers. A number as an integer is truncated toward zero and clamped to 32 bits; NaN gives 0. A
  // string gives its leading decimal digits, with an optional sign before them. Every other kind
  // gives 0.
  std::int32_t integerValue() const;
  std::int64_t int64() const;  // an integer or boolean unchanged, a real truncated; else 0
  double realValue() const;    // any number; a date's seconds since 2001; else 0
  bool booleanValue() const;   // a boolean unchanged, true for a number other than 0; else false

  // "dictionary", "array", "string", "number", "boolean", "data", "date" or "(null)".
  std::string_view kindName() const;

  // Whether kind and content are the same, through all nested containers. An integer equals a real
  // of the same value; a boolean equals only a boolean.
  bool equals(const Value& other) const;

 private:
  struct Date {
    double secondsSince2001;
  };
  struct Data {
    std::shared_ptr<const std::string> bytes;
  };
  using Storage =
      std::variant<std::monostate, std::shared_ptr<Dictionary>, std::shared_ptr<Array>,
                   std::shared_ptr<const std::string>, std::int64_t, double, bool, Data, Date>;
  explicit Value(Storage storage) : _storage(std::move(storage)) {}

  Storage _storage;
};

// Keys and values in the order in which they were first set, as in the file. Keys are unique and
// compared byte by byte. A look-up is linear in a small dictionary and hashed in a large one.
class MARLUNE_API Dictionary {
 public:
  using Key = std::shared_ptr<const std::string>;
  using Entry = std::pair<Key, Value>;  // the key is never null

  // Above this number of entries, look-ups use the hash index.
  static constexpr std::size_t kLargestLinear = 16;

  // The value under `key`; the absent value when there is none. The reference is valid until the
  // dictionary changes.
  const Value& valueForKey(std::string_view key) const;
  bool contains(std::string_view key) const { return _indexOf(key) != kNone; }

  // An existing key keeps its place; a new key goes to the end. Setting an absent value removes the
  // key.
  void setValueForKey(Value value, std::string_view key);
  void setValueForKey(Value value, Key key);
  void removeKey(std::string_view key);

  std::size_t count() const { return _entries.size(); }
  const std::vector<Entry>& entries() const { return _entries; }
  void reserve(std::size_t entries) { _entries.reserve(entries); }

  // A new dictionary with the same keys and the same values, whose containers are shared.
  std::shared_ptr<Dictionary> oneLevelCopy() const;

 private:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
  using Index = std::unordered_map<std::string_view, std::size_t>;

  std::size_t _indexOf(std::string_view key) const;
  void _append(Key key, Value value);

  std::vector<Entry> _entries;
  std::unique_ptr<Index> _index;  // null while the dictionary is small; its keys live in _entries
};

// Values in order. Every element is present.
class MARLUNE_API Array {
 public:
  Array() = default;
  explicit Array(std::vector<Value> elements) : _elements(std::move(elements)) {}

  std::vector<Value>& elements() { return _elements; }
  const std::vector<Value>& elements() const { return _elements; }
  std::size_t count() const { return _elements.size(); }

 private:
  std::vector<Value> _elements;
};

}  // namespace marlune

#endif  // MARLUNE_PLATFORM_VALUE_H_
