#include "marlune/grammar/file/packed_list.h"

#include <bit>
#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

namespace marlune {

namespace {

// The first byte of a value. A container held in several places is written at the first one; the
// others refer to it by its number among such containers.
enum class Mark : unsigned char {
  dictionary,
  array,
  sharedDictionary,
  sharedArray,
  again,
  string,
  integer,
  real,
  yes,
  no,
  data,
  date,
};

// Seven bits per byte, the lowest first; a set high bit means that another byte follows.
void appendNumber(std::string& bytes, std::uint64_t number) {
  for (; number >= 0x80; number >>= 7) bytes.push_back(static_cast<char>(number | 0x80));
  bytes.push_back(static_cast<char>(number));
}

// Maps small numbers of either sign to small unsigned ones.
std::uint64_t folded(std::int64_t number) {
  return (static_cast<std::uint64_t>(number) << 1) ^ static_cast<std::uint64_t>(number >> 63);
}
std::int64_t unfolded(std::uint64_t number) {
  return static_cast<std::int64_t>((number >> 1) ^ (0 - (number & 1)));
}

}  // namespace

class PackedList::Writer {
 public:
  explicit Writer(PackedList& list) : _list(list) {}

  void write(const Value& value) {
    switch (value.kind()) {
      case Value::Kind::absent:
        break;  // does not occur in a list
      case Value::Kind::dictionary:
        return _write(value.asDictionary(), Mark::dictionary, Mark::sharedDictionary);
      case Value::Kind::array:
        return _write(value.asArray(), Mark::array, Mark::sharedArray);
      case Value::Kind::string:
        _mark(Mark::string);
        return _text(*value.asString());
      case Value::Kind::integer:
        _mark(Mark::integer);
        return _number(folded(value.int64()));
      case Value::Kind::real:
        _mark(Mark::real);
        return _number(std::bit_cast<std::uint64_t>(value.realValue()));
      case Value::Kind::boolean:
        return _mark(value.booleanValue() ? Mark::yes : Mark::no);
      case Value::Kind::data:
        _mark(Mark::data);
        return _text(*value.asData());
      case Value::Kind::date:
        _mark(Mark::date);
        return _number(std::bit_cast<std::uint64_t>(value.realValue()));
    }
  }

  // Whether all holders of every container are inside the list.
  bool isWhole() const {
    for (const auto& [container, shared] : _shared) {
      if (shared.holdersLeft > 0) return false;
    }
    return true;
  }

 private:
  struct Shared {
    std::size_t number;
    long holdersLeft;
  };

  template <typename Container>
  void _write(const std::shared_ptr<Container>& container, Mark alone, Mark shared) {
    if (container.use_count() == 1) {
      _mark(alone);
    } else {
      const auto [place, isNew] =
          _shared.try_emplace(container.get(), Shared{_shared.size(), container.use_count()});
      --place->second.holdersLeft;
      _mark(isNew ? shared : Mark::again);
      if (!isNew) return _number(place->second.number);
    }
    _writeMembers(*container);
  }

  void _writeMembers(const Dictionary& dictionary) {
    _number(dictionary.count());
    for (const auto& [key, value] : dictionary.entries()) {
      _text(*key);
      write(value);
    }
  }

  void _writeMembers(const Array& array) {
    _number(array.count());
    for (const Value& value : array.elements()) write(value);
  }

  void _mark(Mark mark) { _list._bytes.push_back(static_cast<char>(mark)); }
  void _number(std::uint64_t number) { appendNumber(_list._bytes, number); }
  void _text(std::string_view text) { _number(_list._addText(text)); }

  PackedList& _list;
  std::unordered_map<const void*, Shared> _shared;
};

class PackedList::Reader {
 public:
  explicit Reader(const PackedList& list) : _list(list), _texts(list._mostTexts()) {}

  Value read() {
    switch (static_cast<Mark>(_byte())) {
      case Mark::dictionary:
        return Value::dictionary(_dictionary());
      case Mark::array:
        return Value::array(_array());
      case Mark::sharedDictionary:
        return _sharedAs([this] { return Value::dictionary(_dictionary()); });
      case Mark::sharedArray:
        return _sharedAs([this] { return Value::array(_array()); });
      case Mark::again:
        return _shared[_count()];
      case Mark::string:
        return Value::string(_text());
      case Mark::integer:
        return Value::integer(unfolded(_number()));
      case Mark::real:
        return Value::real(std::bit_cast<double>(_number()));
      case Mark::yes:
        return Value::boolean(true);
      case Mark::no:
        return Value::boolean(false);
      case Mark::data:
        return Value::data(*_text());
      case Mark::date:
        return Value::date(std::bit_cast<double>(_number()));
    }
    return Value();
  }

 private:
  // Reserves the container's number before reading its members, which come after it when shared.
  template <typename Read>
  Value _sharedAs(Read read) {
    const std::size_t number = _shared.size();
    _shared.emplace_back();
    Value value = read();
    _shared[number] = value;
    return value;
  }

  std::shared_ptr<Dictionary> _dictionary() {
    auto dictionary = std::make_shared<Dictionary>();
    const std::size_t count = _count();
    dictionary->reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
      Dictionary::Key key = _text();
      dictionary->setValueForKey(read(), std::move(key));
    }
    return dictionary;
  }

  std::shared_ptr<Array> _array() {
    auto array = std::make_shared<Array>();
    const std::size_t count = _count();
    array->elements().reserve(count);
    for (std::size_t i = 0; i < count; ++i) array->elements().push_back(read());
    return array;
  }

  const std::shared_ptr<const std::string>& _text() {
    const std::uint64_t number = _number();
    std::shared_ptr<const std::string>& text = _texts[static_cast<std::size_t>(number)];
    if (!text) text = std::make_shared<const std::string>(_list._text(number));
    return text;
  }

  unsigned char _byte() { return static_cast<unsigned char>(_list._bytes[_place++]); }

  std::uint64_t _number() {
    std::uint64_t number = 0;
    for (int shift = 0;; shift += 7) {
      const std::uint64_t byte = _byte();
      number |= (byte & 0x7F) << shift;
      if (byte < 0x80) return number;
    }
  }

  std::size_t _count() { return static_cast<std::size_t>(_number()); }

  const PackedList& _list;
  std::size_t _place = 0;
  std::vector<std::shared_ptr<const std::string>> _texts;  // indexed by number; the texts created
                                                           // so far
  std::vector<Value> _shared;
};

PackedList::PackedList(std::shared_ptr<const Vocabulary> known)
    : _known(known ? std::move(known) : std::make_shared<const Vocabulary>()) {}

std::uint64_t PackedList::_addText(std::string_view text) {
  const Vocabulary::Id known = _known->find(text);
  if (known != Vocabulary::kAbsent) return 2 * std::uint64_t{known} + 1;
  return 2 * std::uint64_t{_texts.add(text)};
}

std::string_view PackedList::_text(std::uint64_t number) const {
  const auto id = static_cast<Vocabulary::Id>(number / 2);
  return number % 2 == 1 ? _known->text(id) : _texts.text(id);
}

std::shared_ptr<const PackedList> PackedList::pack(const Value& root,
                                                   std::shared_ptr<const Vocabulary> known) {
  const std::shared_ptr<PackedList> list(new PackedList(std::move(known)));
  Writer writer(*list);
  writer.write(root);
  if (!writer.isWhole()) return nullptr;
  list->_texts.finish();
  list->_bytes.shrink_to_fit();
  return list;
}

Value PackedList::unpacked() const { return Reader(*this).read(); }

}  // namespace marlune
