#include "marlune/desktop/plist/xml_list_writer.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "marlune/desktop/plist/property_list_limits.h"
#include "marlune/desktop/plist/scalar_text.h"
#include "marlune/util/utf8.h"

namespace marlune {

namespace {

constexpr std::string_view kStart =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<plist version=\"1.0\">\n";
constexpr std::string_view kReplacement = "\xef\xbf\xbd";

// The length of the first UTF-8 character of `text`, or 0 if XML cannot represent it.
std::size_t lengthOfCharacter(std::string_view text) {
  const auto [length, code] = utf8CharacterAt(text, 0);
  const bool isControl = code < 0x20 && code != '\t' && code != '\n';
  return isControl || code == 0xfffe || code == 0xffff ? 0 : length;
}

class Writer {
 public:
  bool write(const Value& value, std::size_t level) {
    switch (value.kind()) {
      case Value::Kind::absent:
        return false;
      case Value::Kind::dictionary:
        return _writeDictionary(*value.asDictionary(), level);
      case Value::Kind::array:
        return _writeArray(*value.asArray(), level);
      case Value::Kind::string:
        return _writeLeaf("string", *value.asString(), level);
      case Value::Kind::integer:
        return _writeLeaf("integer", std::to_string(value.int64()), level);
      case Value::Kind::real:
        return _writeLeaf("real", textFromReal(value.realValue()), level);
      case Value::Kind::boolean:
        return _writeLine(value.booleanValue() ? "<true/>" : "<false/>", level);
      case Value::Kind::data:
        return _writeLeaf("data", base64FromBytes(*value.asData()), level);
      case Value::Kind::date: {
        const auto date = dateInRange(value.realValue());
        return date && _writeLeaf("date", textFromDate(*date), level);
      }
    }
    return false;
  }

  std::string text = std::string(kStart);

 private:
  bool _writeDictionary(const Dictionary& dictionary, std::size_t level) {
    if (!_mayHold(level)) return false;
    if (dictionary.count() == 0) return _writeLine("<dict/>", level);
    _writeLine("<dict>", level);
    for (const auto& [key, value] : dictionary.entries()) {
      _writeLeaf("key", *key, level + 1);
      if (!write(value, level + 1)) return false;
    }
    return _writeLine("</dict>", level);
  }

  bool _writeArray(const Array& array, std::size_t level) {
    if (!_mayHold(level)) return false;
    if (array.count() == 0) return _writeLine("<array/>", level);
    _writeLine("<array>", level);
    for (const Value& element : array.elements()) {
      if (!write(element, level + 1)) return false;
    }
    return _writeLine("</array>", level);
  }

  // Whether a container is allowed at `level`; the root is at 0.
  static bool _mayHold(std::size_t level) { return level < kMostPropertyListLevels; }

  bool _writeLine(std::string_view line, std::size_t level) {
    text.append(level, '\t');
    text += line;
    text += '\n';
    return true;
  }

  bool _writeLeaf(std::string_view name, std::string_view content, std::size_t level) {
    text.append(level, '\t');
    ((text += '<') += name) += '>';
    _writeText(content);
    ((text += "</") += name) += ">\n";
    return true;
  }

  void _writeText(std::string_view content) {
    while (!content.empty()) {
      const std::size_t plain = std::min(content.find_first_of("<>&\r"), content.size());
      _writeCharacters(content.substr(0, plain));
      content.remove_prefix(plain);
      if (content.empty()) return;
      text += _escaped(content.front());
      content.remove_prefix(1);
    }
  }

  void _writeCharacters(std::string_view plain) {
    while (!plain.empty()) {
      const std::size_t length = lengthOfCharacter(plain);
      text += length ? plain.substr(0, length) : kReplacement;
      plain.remove_prefix(length ? length : 1);
    }
  }

  static std::string_view _escaped(char c) {
    switch (c) {
      case '<':
        return "&lt;";
      case '>':
        return "&gt;";
      case '&':
        return "&amp;";
      default:
        return "&#13;";  // XML parsers read a literal CR as a line feed
    }
  }
};

}  // namespace

std::optional<std::string> writePropertyListXml(const Value& value) {
  Writer writer;
  if (!writer.write(value, 0)) return std::nullopt;
  writer.text += "</plist>\n";
  return std::move(writer.text);
}

}  // namespace marlune
