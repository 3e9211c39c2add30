#ifndef MARLUNE_TESTS_SUPPORT_PLIST_NOTATION_H_
#define MARLUNE_TESTS_SUPPORT_PLIST_NOTATION_H_

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <string_view>

#include "marlune/platform/value.h"

namespace marlune {

// Property lists in the notation of the tests:
//
//     {_lhs={_significantSlots=[km, [+, five, 'two words']]}; _rhs=[{_index=#0}]; _repeat=#true}
//
// Dictionary entries are separated by ";", array elements by ",". A word ends before a blank or any
// of ={}[];, and may be quoted as '…' to contain those; '' is the empty string. #12 is an integer,
// #2.5 a real, #true and #false are booleans.
class PlistNotation {
 public:
  static Value parse(std::string_view text) {
    PlistNotation notation(text);
    Value value = notation._value();
    notation._skipBlanks();
    if (notation._at != text.size()) notation._fail();
    return value;
  }

 private:
  explicit PlistNotation(std::string_view text) : _text(text) {}

  Value _value() {
    if (_take('{')) return _dictionary();
    if (_take('[')) return _array();
    const bool isQuoted = _peek() == '\'';
    std::string word = _word();
    if (isQuoted || !word.starts_with('#') || word.size() == 1) return Value::string(word);
    if (word == "#true" || word == "#false") return Value::boolean(word == "#true");
    const bool isNumber = word.find_first_not_of("0123456789.-", 1) == std::string::npos;
    if (!isNumber || word == "#-") return Value::string(word);
    if (word.find('.') != std::string::npos) return Value::real(std::atof(word.c_str() + 1));
    return Value::integer(std::atoll(word.c_str() + 1));
  }

  Value _dictionary() {
    auto entries = std::make_shared<Dictionary>();
    while (!_take('}')) {
      const std::string key = _word();
      if (!_take('=')) _fail();
      entries->setValueForKey(_value(), key);
      if (!_take(';') && _peek() != '}') _fail();
    }
    return Value::dictionary(std::move(entries));
  }

  Value _array() {
    auto elements = std::make_shared<Array>();
    while (!_take(']')) {
      elements->elements().push_back(_value());
      if (!_take(',') && _peek() != ']') _fail();
    }
    return Value::array(std::move(elements));
  }

  std::string _word() {
    std::string word;
    if (_take('\'')) {
      while (_at < _text.size() && _text[_at] != '\'') word += _text[_at++];
      if (_at++ == _text.size()) _fail();
      return word;
    }
    _skipBlanks();
    while (_at < _text.size() &&
           std::string_view(" \n={}[];,").find(_text[_at]) == std::string_view::npos) {
      word += _text[_at++];
    }
    if (word.empty()) _fail();
    return word;
  }

  void _skipBlanks() {
    while (_at < _text.size() && (_text[_at] == ' ' || _text[_at] == '\n')) ++_at;
  }
  char _peek() {
    _skipBlanks();
    return _at < _text.size() ? _text[_at] : '\0';
  }
  bool _take(char c) {
    if (_peek() != c) return false;
    ++_at;
    return true;
  }
  [[noreturn]] void _fail() const {
    throw std::invalid_argument("plist notation, at " + std::to_string(_at) + ": " +
                                std::string(_text));
  }

  std::string_view _text;
  std::size_t _at = 0;
};

inline Value plist(std::string_view text) { return PlistNotation::parse(text); }

}  // namespace marlune

#endif  // MARLUNE_TESTS_SUPPORT_PLIST_NOTATION_H_
