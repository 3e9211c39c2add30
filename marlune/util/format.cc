#include "marlune/util/format.h"

#include <charconv>

namespace marlune {

namespace {

constexpr std::size_t kIndent = 4;

// Deeper values print as "...": a caller's own ring of containers must not overflow the stack.
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
  // As "%.15g" in the C locale, whatever the process's locale is.
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

// A list whose elements `appendElement(i)` appends.
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

std::string formatted(std::string_view format, std::initializer_list<FormatArgument> arguments) {
  std::string text;
  text.reserve(format.size() + 32);
  const FormatArgument* next = arguments.begin();
  for (std::size_t i = 0; i < format.size(); ++i) {
    if (format[i] != '%' || i + 1 == format.size()) {
      text += format[i];
      continue;
    }
    ++i;
    if (format[i] == '%') {
      text += '%';
      continue;
    }
    if (format[i] == 'l' && i + 1 < format.size()) ++i;
    if (next == arguments.end()) {
      text += "(null)";
    } else {
      next->appendTo(text);
      ++next;
    }
  }
  return text;
}

}  // namespace marlune
