#ifndef MARLUNE_DESKTOP_PLIST_BINARY_LIST_PARSER_H_
#define MARLUNE_DESKTOP_PLIST_BINARY_LIST_PARSER_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "marlune/desktop/plist/memory_budget.h"
#include "marlune/desktop/plist/text_pool.h"
#include "marlune/platform/value.h"

namespace marlune {

// Reads the binary form: "bplist00", objects that refer to each other by number, a table of their
// offsets, and a 32-byte trailer. Every offset, count and reference is checked against the file. A
// container with several referrers is copied for each; the copies count against the file's memory
// budget. Texts and bytes are immutable and shared. A lone surrogate reads as U+FFFD. Objects that
// occur only in archives (UIDs, sets, the null object) are refused. Use one parser for one list.
class BinaryListParser {
 public:
  static bool looksBinary(std::string_view bytes) { return bytes.starts_with("bplist"); }

  explicit BinaryListParser(std::string_view bytes);

  // The list's value. Throws PropertyListError, whose message names the byte.
  Value parse();

 private:
  // The position of an object's content and the number of its items.
  struct Content {
    std::size_t offset;
    std::size_t count;
  };

  Value _parsed();
  void _readTrailer();
  std::size_t _offsetOfObject(std::size_t object);
  Value _value(std::size_t object);
  Value _valueAt(std::size_t offset, std::size_t object);
  Value _simpleValue(std::size_t offset) const;
  Value _container(std::size_t offset, std::size_t object);
  Value _array(Content references);
  Value _dictionary(Content references);
  Value _immutable(std::size_t offset, std::size_t object);
  Value _madeImmutable(std::size_t offset);

  std::int64_t _integer(std::size_t offset) const;
  Value _real(std::size_t offset) const;
  Value _date(std::size_t offset) const;
  Value _asciiString(Content content);
  Value _wideString(Content content);
  std::string _utf8FromWide(std::string_view wide) const;

  Content _content(std::size_t offset, std::size_t bytesAnItem) const;
  std::size_t _reference(std::size_t offset) const;
  std::uint64_t _number(std::size_t offset, std::size_t bytes) const;
  unsigned char _byte(std::size_t offset) const;

  std::string_view _bytes;
  std::string_view _objects;  // from the start of the file to the offset table
  std::size_t _offsetSize = 0, _referenceSize = 0;
  std::size_t _objectCount = 0, _rootObject = 0, _tableOffset = 0;

  MemoryBudget _budget;
  TextPool _pool;
  // Long texts and all bytes, by object. The pool does not share these, so they are shared here.
  std::unordered_map<std::size_t, Value> _longValues;
  std::vector<bool> _isOpen;  // objects that enclose the one being read
  std::size_t _levels = 0;
  std::size_t _place = 0;  // the byte that an error refers to
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_PLIST_BINARY_LIST_PARSER_H_
