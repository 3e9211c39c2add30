#include "marlune/platform/value.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace marlune {

namespace {

const Value kAbsentValue;

// The number truncated toward zero and clamped to the range of Integer.
template <typename Integer>
Integer clampedInteger(double number) {
  if (std::isnan(number)) return 0;
  if (number >= static_cast<double>(std::numeric_limits<Integer>::max())) {
    return std::numeric_limits<Integer>::max();
  }
  if (number <= static_cast<double>(std::numeric_limits<Integer>::min())) {
    return std::numeric_limits<Integer>::min();
  }
  return static_cast<Integer>(number);
}

std::int32_t clampedInteger(std::int64_t number) {
  if (number > std::numeric_limits<std::int32_t>::max()) {
    return std::numeric_limits<std::int32_t>::max();
  }
  if (number < std::numeric_limits<std::int32_t>::min()) {
    return std::numeric_limits<std::int32_t>::min();
  }
  return static_cast<std::int32_t>(number);
}

std::int32_t leadingInteger(std::string_view text) {
  const std::size_t start = text.find_first_not_of(" \t\n");
  if (start == std::string_view::npos) return 0;
  text.remove_prefix(start);
  if (text.front() == '+') {
    text.remove_prefix(1);
    if (!text.empty() && text.front() == '-') return 0;
  }
  std::int32_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error == std::errc::result_out_of_range) {
    return text.front() == '-' ? std::numeric_limits<std::int32_t>::min()
                               : std::numeric_limits<std::int32_t>::max();
  }
  return number;
}

}  // namespace

Value Value::string(std::string text) {
  return string(std::make_shared<const std::string>(std::move(text)));
}
Value Value::string(std::shared_ptr<const std::string> text) {
  return Value(Storage(std::move(text)));
}
Value Value::integer(std::int64_t number) { return Value(Storage(number)); }
Value Value::real(double number) { return Value(Storage(number)); }
Value Value::boolean(bool truth) { return Value(Storage(truth)); }
Value Value::data(std::string bytes) {
  return Value(Storage(Data{std::make_shared<const std::string>(std::move(bytes))}));
}
Value Value::date(double secondsSince2001) { return Value(Storage(Date{secondsSince2001})); }
Value Value::dictionary(std::shared_ptr<Dictionary> entries) {
  return entries ? Value(Storage(std::move(entries))) : Value();
}
Value Value::array(std::shared_ptr<Array> elements) {
  return elements ? Value(Storage(std::move(elements))) : Value();
}

Value::Kind Value::kind() const {
  // In the order of Storage's alternatives.
  constexpr Kind kKinds[] = {Kind::absent,  Kind::dictionary, Kind::array,
                             Kind::string,  Kind::integer,    Kind::real,
                             Kind::boolean, Kind::data,       Kind::date};
  return kKinds[_storage.index()];
}

bool Value::isNumber() const {
  const Kind k = kind();
  return k == Kind::integer || k == Kind::real || k == Kind::boolean;
}

const std::shared_ptr<Dictionary>& Value::asDictionary() const {
  static const std::shared_ptr<Dictionary> kNoDictionary;
  const auto* held = std::get_if<std::shared_ptr<Dictionary>>(&_storage);
  return held ? *held : kNoDictionary;
}

const std::shared_ptr<Array>& Value::asArray() const {
  static const std::shared_ptr<Array> kNoArray;
  const auto* held = std::get_if<std::shared_ptr<Array>>(&_storage);
  return held ? *held : kNoArray;
}

const std::string* Value::asString() const {
  const auto* held = std::get_if<std::shared_ptr<const std::string>>(&_storage);
  return held ? held->get() : nullptr;
}

std::shared_ptr<const std::string> Value::sharedString() const {
  const auto* held = std::get_if<std::shared_ptr<const std::string>>(&_storage);
  return held ? *held : nullptr;
}

const std::string* Value::asData() const {
  const auto* held = std::get_if<Data>(&_storage);
  return held ? held->bytes.get() : nullptr;
}

std::int32_t Value::integerValue() const {
  switch (kind()) {
    case Kind::integer:
      return clampedInteger(std::get<std::int64_t>(_storage));
    case Kind::real:
      return clampedInteger<std::int32_t>(std::get<double>(_storage));
    case Kind::boolean:
      return std::get<bool>(_storage) ? 1 : 0;
    case Kind::string:
      return leadingInteger(*asString());
    default:
      return 0;
  }
}

std::int64_t Value::int64() const {
  switch (kind()) {
    case Kind::integer:
      return std::get<std::int64_t>(_storage);
    case Kind::real:
      return clampedInteger<std::int64_t>(std::get<double>(_storage));
    case Kind::boolean:
      return std::get<bool>(_storage) ? 1 : 0;
    default:
      return 0;
  }
}

double Value::realValue() const {
  switch (kind()) {
    case Kind::integer:
      return static_cast<double>(std::get<std::int64_t>(_storage));
    case Kind::real:
      return std::get<double>(_storage);
    case Kind::boolean:
      return std::get<bool>(_storage) ? 1 : 0;
    case Kind::date:
      return std::get<Date>(_storage).secondsSince2001;
    default:
      return 0;
  }
}

bool Value::booleanValue() const { return isNumber() && realValue() != 0; }

std::string_view Value::kindName() const {
  switch (kind()) {
    case Kind::absent:
      return "(null)";
    case Kind::dictionary:
      return "dictionary";
    case Kind::array:
      return "array";
    case Kind::string:
      return "string";
    case Kind::integer:
    case Kind::real:
      return "number";
    case Kind::boolean:
      return "boolean";
    case Kind::data:
      return "data";
    case Kind::date:
      return "date";
  }
  return "(null)";
}

bool Value::equals(const Value& other) const {
  const bool bothNumbers =
      isNumber() && other.isNumber() && kind() != Kind::boolean && other.kind() != Kind::boolean;
  if (kind() != other.kind()) return bothNumbers && realValue() == other.realValue();
  switch (kind()) {
    case Kind::absent:
      return true;
    case Kind::dictionary: {
      const Dictionary& mine = *asDictionary();
      const Dictionary& theirs = *other.asDictionary();
      if (&mine == &theirs) return true;
      if (mine.count() != theirs.count()) return false;
      for (const auto& [key, value] : mine.entries()) {
        if (!theirs.contains(*key) || !value.equals(theirs.valueForKey(*key))) return false;
      }
      return true;
    }
    case Kind::array: {
      const std::vector<Value>& mine = asArray()->elements();
      const std::vector<Value>& theirs = other.asArray()->elements();
      if (&mine == &theirs) return true;
      if (mine.size() != theirs.size()) return false;
      for (std::size_t i = 0; i < mine.size(); ++i) {
        if (!mine[i].equals(theirs[i])) return false;
      }
      return true;
    }
    case Kind::string:
      return *asString() == *other.asString();
    case Kind::data:
      return *asData() == *other.asData();
    case Kind::integer:
      return int64() == other.int64();
    default:
      return realValue() == other.realValue();
  }
}

const Value& Dictionary::valueForKey(std::string_view key) const {
  const std::size_t at = _indexOf(key);
  return at == kNone ? kAbsentValue : _entries[at].second;
}

void Dictionary::setValueForKey(Value value, std::string_view key) {
  const std::size_t at = _indexOf(key);
  if (at == kNone) {
    if (!value.isAbsent()) _append(std::make_shared<const std::string>(key), std::move(value));
  } else if (value.isAbsent()) {
    removeKey(key);
  } else {
    _entries[at].second = std::move(value);
  }
}

void Dictionary::setValueForKey(Value value, Key key) {
  if (value.isAbsent() || contains(*key)) {
    setValueForKey(std::move(value), std::string_view(*key));
  } else {
    _append(std::move(key), std::move(value));
  }
}

void Dictionary::removeKey(std::string_view key) {
  const std::size_t at = _indexOf(key);
  if (at == kNone) return;
  if (_index) {
    _index->erase(key);
    for (auto& [each, position] : *_index) position -= position > at ? 1 : 0;
  }
  _entries.erase(_entries.begin() + static_cast<std::ptrdiff_t>(at));
}

std::shared_ptr<Dictionary> Dictionary::oneLevelCopy() const {
  auto copy = std::make_shared<Dictionary>();
  copy->reserve(_entries.size());
  for (const auto& [key, value] : _entries) copy->_append(key, value);
  return copy;
}

std::size_t Dictionary::_indexOf(std::string_view key) const {
  if (_index) {
    const auto found = _index->find(key);
    return found == _index->end() ? kNone : found->second;
  }
  for (std::size_t i = 0; i < _entries.size(); ++i) {
    if (*_entries[i].first == key) return i;
  }
  return kNone;
}

// Reserves room for the entry first. If memory ran out between the two steps, a key would be in the
// entries but not in the index, and could be set a second time.
void Dictionary::_append(Key key, Value value) {
  const std::size_t at = _entries.size();
  if (at == _entries.capacity()) _entries.reserve(std::max<std::size_t>(1, 2 * at));
  if (_index) _index->emplace(*key, at);
  _entries.emplace_back(std::move(key), std::move(value));
  if (!_index && _entries.size() > kLargestLinear) {
    auto index = std::make_unique<Index>();
    index->reserve(_entries.capacity());
    for (std::size_t i = 0; i < _entries.size(); ++i) index->emplace(*_entries[i].first, i);
    _index = std::move(index);
  }
}

}  // namespace marlune
