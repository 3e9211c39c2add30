#include "marlune/util/format.h"

#include <algorithm>
#include <charconv>

#include "marlune/util/format_placeholder.h"

namespace marlune {

namespace {

constexpr std::size_t kIndent = 4;

// Deeper values print as "...", so that a cycle of containers built by the caller cannot overflow
// the stack.
constexpr std::size_t kDeepest = 256;

bool isPlainWord(std::string_view text) {
  if (text.empty()) return false;
  for (const char c : text) {
    const bool plain =
        (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
    if (!plain) return false;
  }
  return true;
}

void appendQuoted(std::string& text, std::string_view word) {
  if (isPlainWord(word)) {
    text += word;
    return;
  }
  text += '"';
  for (const char c : word) {
    if (c == '\n') {
      text += "\\n";
      continue;
    }
    if (c == '"' || c == '\\') text += '\\';
    text += c;
  }
  text += '"';
}

void appendReal(std::string& text, double number) {
  // "%.15g" in the C locale, independent of the process's locale.
  char digits[32];
  text.append(
      digits,
      std::to_chars(digits, digits + sizeof digits, number, std::chars_format::general, 15).ptr);
}

void appendHex(std::string& text, std::string_view bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  text += '<';
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  text += '>';
}

void appendNested(std::string& text, const Value& value, std::size_t depth);

void appendDictionary(std::string& text, const Dictionary& dictionary, std::size_t depth) {
  text += "{\n";
  for (const auto& [key, value] : dictionary.entries()) {
    text.append((depth + 1) * kIndent, ' ');
    appendQuoted(text, *key);
    text += " = ";
    appendNested(text, value, depth + 1);
    text += ";\n";
  }
  text.append(depth * kIndent, ' ');
  text += '}';
}

// A list; `appendElement(i)` appends element i.
template <typename AppendElement>
void appendArray(std::string& text, std::size_t count, std::size_t depth,
                 AppendElement appendElement) {
  text += "(\n";
  for (std::size_t i = 0; i < count; ++i) {
    text.append((depth + 1) * kIndent, ' ');
    appendElement(i);
    text += i + 1 < count ? ",\n" : "\n";
  }
  text.append(depth * kIndent, ' ');
  text += ')';
}

// A value inside a container, where text is quoted.
void appendNested(std::string& text, const Value& value, std::size_t depth) {
  if (depth > kDeepest) {
    text += "...";
    return;
  }
  switch (value.kind()) {
    case Value::Kind::absent:
      text += "(null)";
      break;
    case Value::Kind::dictionary:
      appendDictionary(text, *value.asDictionary(), depth);
      break;
    case Value::Kind::array: {
      const std::vector<Value>& elements = value.asArray()->elements();
      appendArray(text, elements.size(), depth,
                  [&](std::size_t i) { appendNested(text, elements[i], depth + 1); });
      break;
    }
    case Value::Kind::string:
      appendQuoted(text, *value.asString());
      break;
    case Value::Kind::integer:
    case Value::Kind::boolean:
      text += std::to_string(value.int64());
      break;
    case Value::Kind::real:
    case Value::Kind::date:
      appendReal(text, value.realValue());
      break;
    case Value::Kind::data:
      appendHex(text, *value.asData());
      break;
  }
}

}  // namespace

void FormatArgument::appendTo(std::string& text) const {
  switch (_kind) {
    case Kind::absent:
      text += "(null)";
      break;
    case Kind::integer:
      text += std::to_string(_integer);
      break;
    case Kind::natural:
      text += std::to_string(_natural);
      break;
    case Kind::real:
      appendReal(text, _real);
      break;
    case Kind::text:
      text += _text;
      break;
    case Kind::object:
      _object.append(text, _object.object);
      break;
  }
}

void FormatArgument::_appendDescription(std::string& text, const void* object) {
  text += static_cast<const Describable*>(object)->description();
}

void FormatArgument::_appendValue(std::string& text, const void* object) {
  const Value& value = *static_cast<const Value*>(object);
  if (value.asString()) {
    text += *value.asString();
  } else {
    appendNested(text, value, 0);
  }
}

void FormatArgument::_appendWords(std::string& text, const void* object) {
  _appendList(text, *static_cast<const std::vector<std::string>*>(object));
}

void FormatArgument::_appendNumbers(std::string& text, const void* object) {
  const auto& numbers = *static_cast<const std::vector<std::int32_t>*>(object);
  appendArray(text, numbers.size(), 0, [&](std::size_t i) { text += std::to_string(numbers[i]); });
}

void FormatArgument::_appendList(std::string& text, const std::vector<std::string>& descriptions) {
  appendArray(text, descriptions.size(), 0,
              [&](std::size_t i) { appendQuoted(text, descriptions[i]); });
}

void FormatArgument::appendTo(std::string& text, const FormatPlaceholder& placeholder) const {
  if (_appendNumber(text, placeholder)) return;
  if (placeholder.width == 0 && placeholder.precision < 0) {
    appendTo(text);
    return;
  }
  std::string shown;
  appendTo(shown);
  placeholder.appendText(text, shown);
}

// Appends a number if the placeholder is for its kind. Returns whether it did.
bool FormatArgument::_appendNumber(std::string& text, const FormatPlaceholder& as) const {
  if (_kind == Kind::real && as.isReal()) {
    as.appendReal(text, _real);
    return true;
  }
  if (_kind != Kind::integer && _kind != Kind::natural) return false;
  const bool isInteger = _kind == Kind::integer;
  if (as.conversion == 'c') {
    const auto character =
        static_cast<char>(isInteger ? _integer : static_cast<std::int64_t>(_natural));
    FormatPlaceholder whole = as;
    whole.precision = -1;
    whole.appendText(text, {&character, 1});
  } else if (as.isSigned() && (isInteger || _natural <= INT64_MAX)) {
    as.appendInteger(text, isInteger ? _integer : static_cast<std::int64_t>(_natural));
  } else if (as.isSigned() || as.isUnsigned()) {
    auto bits = isInteger ? static_cast<std::uint64_t>(_integer) : _natural;
    if (_bytes <= sizeof(int)) bits = static_cast<unsigned>(bits);
    as.appendNatural(text, bits);
  } else {
    return false;
  }
  return true;
}

int FormatArgument::asNumber() const {
  constexpr std::int64_t kMost = FormatPlaceholder::kLargestNumber;
  if (_kind == Kind::integer) return static_cast<int>(std::clamp(_integer, -kMost, kMost));
  if (_kind == Kind::natural) return static_cast<int>(std::min<std::uint64_t>(_natural, kMost));
  return 0;
}

namespace {

// Reads a format from start to end and takes arguments as the placeholders need them.
class FormatReader {
 public:
  FormatReader(std::string_view format, std::initializer_list<FormatArgument> arguments)
      : _rest(format), _next(arguments.begin()), _end(arguments.end()) {}

  std::string text() {
    std::string text;
    text.reserve(_rest.size() + 32);
    while (!_rest.empty()) {
      const std::size_t percent = std::min(_rest.find('%'), _rest.size());
      text += _rest.substr(0, percent);
      _rest.remove_prefix(percent);
      if (!_rest.empty()) _appendPlaceholder(text);
    }
    return text;
  }

 private:
  void _appendPlaceholder(std::string& text) {
    const std::string_view start = _rest;
    _rest.remove_prefix(1);
    FormatPlaceholder placeholder;
    _readFlags(placeholder);
    placeholder.setWidth(_number());
    if (_skip('.')) placeholder.precision = _number();
    _readLength(placeholder);
    if (_rest.empty()) {
      text += start;
      return;
    }
    placeholder.conversion = _rest.front();
    _rest.remove_prefix(1);
    if (placeholder.conversion == '%') {
      text += '%';
    } else {
      _argument().appendTo(text, placeholder);
    }
  }

  void _readFlags(FormatPlaceholder& placeholder) {
    for (; !_rest.empty(); _rest.remove_prefix(1)) {
      const std::size_t flag = FormatPlaceholder::kFlags.find(_rest.front());
      if (flag == kNone) return;
      placeholder.addFlag(flag);
    }
  }

  // Digits, nothing (0), or "*" for the next argument.
  int _number() {
    if (_skip('*')) return _argument().asNumber();
    int number = 0;
    for (; !_rest.empty() && _rest.front() >= '0' && _rest.front() <= '9'; _rest.remove_prefix(1)) {
      number = std::min(10 * number + (_rest.front() - '0'), FormatPlaceholder::kLargestNumber);
    }
    return number;
  }

  // Of the lengths only "h" and "hh" count: others are those of types that an argument has anyway.
  void _readLength(FormatPlaceholder& placeholder) {
    using Length = FormatPlaceholder::Length;
    if (_skip('h')) placeholder.length = _skip('h') ? Length::byte : Length::twoBytes;
    while (!_rest.empty() && std::string_view("ljztLq").find(_rest.front()) != kNone) {
      _rest.remove_prefix(1);
    }
  }

  bool _skip(char c) {
    if (!_rest.starts_with(c)) return false;
    _rest.remove_prefix(1);
    return true;
  }

  FormatArgument _argument() { return _next == _end ? FormatArgument(nullptr) : *_next++; }

  static constexpr std::size_t kNone = std::string_view::npos;

  std::string_view _rest;
  const FormatArgument* _next;
  const FormatArgument* const _end;
};

}  // namespace

std::string formatted(std::string_view format, std::initializer_list<FormatArgument> arguments) {
  return FormatReader(format, arguments).text();
}

}  // namespace marlune
