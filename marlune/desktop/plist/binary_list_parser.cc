#include "marlune/desktop/plist/binary_list_parser.h"

#include <bit>
#include <utility>

#include "marlune/desktop/plist/property_list_error.h"
#include "marlune/desktop/plist/property_list_limits.h"
#include "marlune/desktop/plist/scalar_text.h"

namespace marlune {

namespace {

constexpr std::size_t kHeaderBytes = 8;
constexpr std::size_t kTrailerBytes = 32;
constexpr std::size_t kCostOfLongValue = 80;  // its entry among the long values
constexpr std::size_t kMostUtf8OfUnit = 3;    // bytes of UTF-8 for two bytes of UTF-16

// The high four bits of an object's first byte.
enum Kind : unsigned {
  kSimple = 0x0,
  kInteger = 0x1,
  kReal = 0x2,
  kDate = 0x3,
  kData = 0x4,
  kAscii = 0x5,
  kWide = 0x6,
  kArray = 0xa,
  kDictionary = 0xd,
};

[[noreturn]] void fail(std::string message) { throw PropertyListError{std::move(message)}; }

std::string hexadecimal(unsigned char byte) {
  constexpr char kDigits[] = "0123456789abcdef";
  return std::string("0x") + kDigits[byte >> 4] + kDigits[byte & 0xf];
}

void appendUtf8(std::string& text, char32_t c) {
  const auto continued = [](char32_t bits) { return static_cast<char>(0x80 | (bits & 0x3f)); };
  if (c < 0x80) {
    text += static_cast<char>(c);
  } else if (c < 0x800) {
    text += {static_cast<char>(0xc0 | c >> 6), continued(c)};
  } else if (c < 0x10000) {
    text += {static_cast<char>(0xe0 | c >> 12), continued(c >> 6), continued(c)};
  } else {
    text +=
        {static_cast<char>(0xf0 | c >> 18), continued(c >> 12), continued(c >> 6), continued(c)};
  }
}

}  // namespace

BinaryListParser::BinaryListParser(std::string_view bytes)
    : _bytes(bytes), _budget(MemoryBudget::besideFile(bytes.size())), _pool(_budget) {}

Value BinaryListParser::parse() {
  try {
    return _parsed();
  } catch (const PropertyListError& error) {
    throw PropertyListError{"byte " + std::to_string(_place) + ": " + error.message};
  }
}

Value BinaryListParser::_parsed() {
  if (!_bytes.starts_with("bplist00")) {
    fail("expected \"bplist00\", found " + quotedExcerpt(_bytes.substr(0, kHeaderBytes)));
  }
  _readTrailer();
  _budget.take(_objectCount / 8);
  _isOpen.resize(_objectCount);
  return _value(_rootObject);
}

void BinaryListParser::_readTrailer() {
  _place = _bytes.size();
  if (_bytes.size() < kHeaderBytes + kTrailerBytes) {
    fail("expected a trailer of 32 bytes, found the end of the file");
  }
  const std::size_t trailer = _place = _bytes.size() - kTrailerBytes;
  _offsetSize = _byte(trailer + 6);
  _referenceSize = _byte(trailer + 7);
  const auto isSize = [](std::size_t size) { return size >= 1 && size <= 8; };
  if (!isSize(_offsetSize) || !isSize(_referenceSize)) {
    fail("expected offsets and references of 1 to 8 bytes, found " + std::to_string(_offsetSize) +
         " and " + std::to_string(_referenceSize));
  }
  _objectCount = _number(trailer + 8, 8);
  _rootObject = _number(trailer + 16, 8);
  _tableOffset = _number(trailer + 24, 8);
  if (_tableOffset < kHeaderBytes || _tableOffset > trailer ||
      _objectCount > (trailer - _tableOffset) / _offsetSize) {
    fail("expected a table of offsets inside the file, found " + std::to_string(_objectCount) +
         " offsets from byte " + std::to_string(_tableOffset));
  }
  _objects = _bytes.substr(0, _tableOffset);
}

std::size_t BinaryListParser::_offsetOfObject(std::size_t object) {
  if (object >= _objectCount) {
    fail("expected one of " + std::to_string(_objectCount) + " objects, found a reference to " +
         std::to_string(object));
  }
  const std::size_t entry = _tableOffset + object * _offsetSize;
  const std::uint64_t offset = _number(entry, _offsetSize);
  if (offset < kHeaderBytes || offset >= _tableOffset) {
    _place = entry;
    fail("expected the offset of an object, found " + std::to_string(offset));
  }
  return offset;
}

Value BinaryListParser::_value(std::size_t object) {
  const std::size_t offset = _offsetOfObject(object);
  const std::size_t outer = std::exchange(_place, offset);
  Value value = _valueAt(offset, object);
  _place = outer;
  return value;
}

Value BinaryListParser::_valueAt(std::size_t offset, std::size_t object) {
  switch (_byte(offset) >> 4) {
    case kSimple:
      return _simpleValue(offset);
    case kInteger:
      return Value::integer(_integer(offset));
    case kReal:
      return _real(offset);
    case kDate:
      return _date(offset);
    case kData:
    case kAscii:
    case kWide:
      return _immutable(offset, object);
    case kArray:
    case kDictionary:
      return _container(offset, object);
    default:
      fail("expected an object of a property list, found one marked " + hexadecimal(_byte(offset)));
  }
}

Value BinaryListParser::_simpleValue(std::size_t offset) const {
  const unsigned char marker = _byte(offset);
  if (marker != 8 && marker != 9) {
    fail("expected a boolean, found an object marked " + hexadecimal(marker));
  }
  return Value::boolean(marker == 9);
}

Value BinaryListParser::_container(std::size_t offset, std::size_t object) {
  if (_isOpen[object]) fail("expected a tree, found an object that contains itself");
  if (_levels == kMostPropertyListLevels) {
    fail("expected at most " + std::to_string(kMostPropertyListLevels) +
         " levels of dictionaries and arrays, found more");
  }
  _isOpen[object] = true;
  ++_levels;
  Value value = _byte(offset) >> 4 == kArray ? _array(_content(offset, _referenceSize))
                                             : _dictionary(_content(offset, 2 * _referenceSize));
  --_levels;
  _isOpen[object] = false;
  return value;
}

Value BinaryListParser::_array(Content references) {
  std::vector<Value> elements;
  _budget.take(MemoryBudget::costOfArray(references.count));
  elements.reserve(references.count);
  for (std::size_t i = 0; i < references.count; ++i) {
    elements.push_back(_value(_reference(references.offset + i * _referenceSize)));
  }
  return Value::array(std::make_shared<Array>(std::move(elements)));
}

Value BinaryListParser::_dictionary(Content references) {
  const std::size_t count = references.count;
  _budget.take(MemoryBudget::costOfDictionary(count));
  auto dictionary = std::make_shared<Dictionary>();
  dictionary->reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t keyOffset = references.offset + i * _referenceSize;
    Dictionary::Key key = _value(_reference(keyOffset)).sharedString();
    if (!key) fail("expected a string as key " + std::to_string(i) + " of the dictionary");
    Value value = _value(_reference(keyOffset + count * _referenceSize));
    dictionary->setValueForKey(std::move(value), key);
    if (dictionary->count() != i + 1) {
      fail("expected every key once in the dictionary, found " + quotedExcerpt(*key) + " again");
    }
  }
  return Value::dictionary(std::move(dictionary));
}

Value BinaryListParser::_immutable(std::size_t offset, std::size_t object) {
  if (const auto known = _longValues.find(object); known != _longValues.end()) {
    return known->second;
  }
  Value value = _madeImmutable(offset);
  const std::string* text = value.asString() ? value.asString() : value.asData();
  if (!value.asString() || text->size() > TextPool::kLongestShared) {
    _budget.take(kCostOfLongValue);
    _longValues.emplace(object, value);
  }
  return value;
}

Value BinaryListParser::_madeImmutable(std::size_t offset) {
  switch (_byte(offset) >> 4) {
    case kAscii:
      return _asciiString(_content(offset, 1));
    case kWide:
      return _wideString(_content(offset, 2));
    default: {
      const Content content = _content(offset, 1);
      _budget.take(MemoryBudget::costOfText(content.count));
      return Value::data(std::string(_objects.substr(content.offset, content.count)));
    }
  }
}

Value BinaryListParser::_asciiString(Content content) {
  const std::string_view text = _objects.substr(content.offset, content.count);
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x80) fail("expected ASCII text, found the byte " + hexadecimal(byte));
  }
  return Value::string(_pool.textFor(text));
}

Value BinaryListParser::_wideString(Content content) {
  const std::size_t mostBytes = kMostUtf8OfUnit * content.count;
  _budget.take(mostBytes);
  auto text = _pool.textFor(_utf8FromWide(_objects.substr(content.offset, 2 * content.count)));
  _budget.giveBack(mostBytes);
  return Value::string(std::move(text));
}

std::string BinaryListParser::_utf8FromWide(std::string_view wide) const {
  const auto unitAt = [&](std::size_t i) -> char32_t {
    if (i + 1 >= wide.size()) return 0;
    return static_cast<char32_t>(static_cast<unsigned char>(wide[i]) << 8 |
                                 static_cast<unsigned char>(wide[i + 1]));
  };
  std::string text;
  text.reserve(kMostUtf8OfUnit * wide.size() / 2);
  for (std::size_t i = 0; i < wide.size(); i += 2) {
    char32_t c = unitAt(i);
    const char32_t next = unitAt(i + 2);
    if (c >> 10 == 0xd800 >> 10 && next >> 10 == 0xdc00 >> 10) {
      c = 0x10000 + ((c & 0x3ff) << 10 | (next & 0x3ff));
      i += 2;
    } else if (c >> 11 == 0xd800 >> 11) {
      c = 0xfffd;
    }
    appendUtf8(text, c);
  }
  return text;
}

// Integers of 1, 2 and 4 bytes are unsigned, those of 8 and 16 signed.
std::int64_t BinaryListParser::_integer(std::size_t offset) const {
  const unsigned exponent = _byte(offset) & 0xf;
  if (exponent > 4) fail("expected an integer of at most 16 bytes, found more");
  const std::size_t size = std::size_t{1} << exponent;
  if (size <= 8) return static_cast<std::int64_t>(_number(offset + 1, size));
  const std::uint64_t high = _number(offset + 1, 8);
  const auto low = static_cast<std::int64_t>(_number(offset + 9, 8));
  if (high != (low < 0 ? ~std::uint64_t{0} : 0)) {
    fail("expected an integer of 64 bits, found a larger one");
  }
  return low;
}

Value BinaryListParser::_real(std::size_t offset) const {
  switch (_byte(offset) & 0xf) {
    case 2:
      return Value::real(std::bit_cast<float>(static_cast<std::uint32_t>(_number(offset + 1, 4))));
    case 3:
      return Value::real(std::bit_cast<double>(_number(offset + 1, 8)));
    default:
      fail("expected a real of 4 or 8 bytes, found an object marked " + hexadecimal(_byte(offset)));
  }
}

Value BinaryListParser::_date(std::size_t offset) const {
  if (_byte(offset) != 0x33) {
    fail("expected a date of 8 bytes, found an object marked " + hexadecimal(_byte(offset)));
  }
  const auto date = dateInRange(std::bit_cast<double>(_number(offset + 1, 8)));
  if (!date) fail("expected a date in the years 1 to 9999, found another");
  return Value::date(*date);
}

// The low four bits of an object's first byte are the item count; 15 means that an integer with the
// count follows.
BinaryListParser::Content BinaryListParser::_content(std::size_t offset,
                                                     std::size_t bytesAnItem) const {
  Content content{offset + 1, _byte(offset) & 0xfu};
  if (content.count == 15) {
    const unsigned char marker = _byte(offset + 1);
    if (marker >> 4 != kInteger || (marker & 0xf) > 3) {
      fail("expected a count, found an object marked " + hexadecimal(marker));
    }
    const std::size_t size = std::size_t{1} << (marker & 0xf);
    content = {offset + 2 + size, _number(offset + 2, size)};
  }
  if (content.offset > _objects.size() ||
      content.count > (_objects.size() - content.offset) / bytesAnItem) {
    fail("expected an object inside the file, found one of " + std::to_string(content.count) +
         " items");
  }
  return content;
}

std::size_t BinaryListParser::_reference(std::size_t offset) const {
  return _number(offset, _referenceSize);
}

// A big-endian number of `bytes` bytes, at most 8.
std::uint64_t BinaryListParser::_number(std::size_t offset, std::size_t bytes) const {
  std::uint64_t number = 0;
  for (std::size_t i = 0; i < bytes; ++i) number = number << 8 | _byte(offset + i);
  return number;
}

unsigned char BinaryListParser::_byte(std::size_t offset) const {
  if (offset >= _bytes.size()) fail("expected more of an object, found the end of the file");
  return static_cast<unsigned char>(_bytes[offset]);
}

}  // namespace marlune
