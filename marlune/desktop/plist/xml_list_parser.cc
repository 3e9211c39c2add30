#include "marlune/desktop/plist/xml_list_parser.h"

#include <iterator>
#include <new>
#include <utility>

#include "marlune/desktop/plist/expat_memory.h"
#include "marlune/desktop/plist/property_list_error.h"
#include "marlune/desktop/plist/property_list_limits.h"
#include "marlune/desktop/plist/scalar_text.h"

namespace marlune {

namespace {

// Memory limit for Expat. A list needs a few KiB; a long comment needs more, because Expat keeps it
// until it ends.
constexpr std::size_t kMostLibraryBytes = std::size_t{8} << 20;

// Expat copies each piece it is given.
constexpr std::size_t kPieceBytes = std::size_t{256} << 10;

bool isBlank(std::string_view text) {
  for (const char c : text) {
    if (c != ' ' && c != '\t' && c != '\n' && c != '\r') return false;
  }
  return true;
}

std::string tag(std::string_view name) { return '<' + onOneLine(name.substr(0, 60)) + '>'; }
std::string endTag(std::string_view name) { return "</" + std::string(name) + '>'; }

}  // namespace

XmlListParser::XmlListParser(std::string_view bytes)
    : _bytes(bytes),
      _budget(MemoryBudget::besideFile(bytes.size())),
      _libraryBudget(kMostLibraryBytes),
      _parser(nullptr, _expat.free),
      _pool(_budget) {
  _budget.take(kMostLibraryBytes);
  const ExpatMemory::Scope memory(_libraryBudget);
  _parser.reset(_expat.create(nullptr, &ExpatMemory::suite(), nullptr));
  if (!_parser) throw std::bad_alloc();
  _installHandlers();
}

Value XmlListParser::parse() {
  const ExpatMemory::Scope memory(_libraryBudget);
  XML_Status status = XML_STATUS_OK;
  for (std::size_t at = 0; status == XML_STATUS_OK && at <= _bytes.size(); at += kPieceBytes) {
    const std::string_view piece = _bytes.substr(at, kPieceBytes);
    status = _expat.parse(_parser.get(), piece.data(), static_cast<int>(piece.size()),
                          /*isFinal=*/at + kPieceBytes > _bytes.size());
  }
  if (!_error.empty()) throw PropertyListError{_error};
  if (status != XML_STATUS_OK) throw PropertyListError{_brokenXml()};
  return std::move(_values.front());
}

// Runs a handler's work. Exceptions must not cross Expat's C frames: the first failure is stored
// with its position and stops the parse. Expat may still call handlers once after that.
template <typename Work>
void XmlListParser::_guarded(const Work& work) noexcept {
  if (!_error.empty()) return;
  try {
    try {
      work();
    } catch (const PropertyListError& error) {
      _error = _placed(error.message);
    }
  } catch (const std::bad_alloc&) {
    _error = "out of memory";  // short enough not to allocate
  }
  if (!_error.empty()) _expat.stop(_parser.get(), /*resumable=*/XML_FALSE);
}

void XmlListParser::_installHandlers() {
  _expat.setUserData(_parser.get(), this);
  _expat.setElementHandler(
      _parser.get(),
      [](void* self, const XML_Char* name, const XML_Char**) {
        auto* parser = static_cast<XmlListParser*>(self);
        parser->_guarded([&] { parser->_start(name); });
      },
      [](void* self, const XML_Char*) {
        auto* parser = static_cast<XmlListParser*>(self);
        parser->_guarded([&] { parser->_end(); });
      });
  _expat.setCharacterDataHandler(_parser.get(), [](void* self, const XML_Char* text, int length) {
    auto* parser = static_cast<XmlListParser*>(self);
    parser->_guarded([&] { parser->_text({text, static_cast<std::size_t>(length)}); });
  });
  // Entities could make a small file grow without bound, or refer to another file.
  _expat.setEntityDeclHandler(
      _parser.get(), [](void* self, const XML_Char* name, int, const XML_Char*, int,
                        const XML_Char*, const XML_Char*, const XML_Char*, const XML_Char*) {
        auto* parser = static_cast<XmlListParser*>(self);
        parser->_guarded(
            [&] { parser->_failFinding("the declaration of an entity " + quotedExcerpt(name)); });
      });
  // If the document type is not read, Expat does not report an unknown entity as an error and would
  // silently drop it from the text.
  _expat.setSkippedEntityHandler(_parser.get(), [](void* self, const XML_Char* name, int) {
    auto* parser = static_cast<XmlListParser*>(self);
    parser->_guarded([&] { parser->_failFinding("the unknown entity " + quotedExcerpt(name)); });
  });
}

XmlListParser::Element XmlListParser::_elementNamed(std::string_view name) {
  const auto orNone = [&](std::string_view full, Element element) {
    return name == full ? element : Element::none;
  };
  switch (name.empty() ? '\0' : name.front()) {
    case 'a':
      return orNone("array", Element::array);
    case 'd':
      if (name == "dict") return Element::dictionary;
      return name == "data" ? Element::data : orNone("date", Element::date);
    case 'f':
      return orNone("false", Element::no);
    case 'i':
      return orNone("integer", Element::integer);
    case 'k':
      return orNone("key", Element::key);
    case 'p':
      return orNone("plist", Element::plist);
    case 'r':
      return orNone("real", Element::real);
    case 's':
      return orNone("string", Element::string);
    case 't':
      return orNone("true", Element::yes);
    default:
      return Element::none;
  }
}

const char* XmlListParser::_nameOf(Element element) {
  constexpr const char* kNames[] = {"",        "plist", "dict", "array", "key",  "string",
                                    "integer", "real",  "true", "false", "data", "date"};
  return kNames[static_cast<std::size_t>(element)];
}

void XmlListParser::_start(std::string_view name) {
  const Element element = _elementNamed(name);
  if (!_mayStart(element)) _failFinding(tag(name));
  switch (element) {
    case Element::plist:
    case Element::dictionary:
    case Element::array:
      return _open(element);
    default:
      _leaf = element;
      _leafText.clear();
  }
}

bool XmlListParser::_mayStart(Element element) const {
  if (element == Element::none || _leaf != Element::none) return false;
  if (_frames.empty()) return element == Element::plist && !_isComplete;
  if (element == Element::plist) return false;
  const Frame& frame = _frames.back();
  switch (frame.element) {
    case Element::plist:
      return element != Element::key && _values.empty();
    case Element::dictionary:
      return _awaitsKey(frame) == (element == Element::key);
    default:
      return element != Element::key;
  }
}

bool XmlListParser::_awaitsKey(const Frame& dictionary) const {
  return _keys.size() - dictionary.firstKey == _values.size() - dictionary.firstValue;
}

void XmlListParser::_open(Element container) {
  if (_frames.size() > kMostPropertyListLevels) {
    throw PropertyListError{"expected at most " + std::to_string(kMostPropertyListLevels) +
                            " levels of dictionaries and arrays, found more"};
  }
  _frames.push_back({container, _values.size(), _keys.size()});
}

void XmlListParser::_end() {
  if (_leaf != Element::none) {
    _finishLeaf();
  } else {
    _close();
  }
}

void XmlListParser::_close() {
  const Frame frame = _frames.back();
  const bool isMissingValue = frame.element == Element::plist
                                  ? _values.empty()
                                  : frame.element == Element::dictionary && !_awaitsKey(frame);
  if (isMissingValue) _failFinding(endTag(_nameOf(frame.element)));
  _frames.pop_back();
  if (frame.element == Element::plist) {
    _isComplete = true;
    return;
  }
  Value value = frame.element == Element::array ? _arrayOf(frame) : _dictionaryOf(frame);
  _values.resize(frame.firstValue);
  _keys.resize(frame.firstKey);
  _push(std::move(value));
}

void XmlListParser::_push(Value value) {
  _budget.makeRoom(_values, _values.size() + 1);
  _values.push_back(std::move(value));
}

Value XmlListParser::_arrayOf(const Frame& frame) {
  _budget.take(MemoryBudget::costOfArray(_values.size() - frame.firstValue));
  const auto first = _values.begin() + static_cast<std::ptrdiff_t>(frame.firstValue);
  return Value::array(std::make_shared<Array>(
      std::vector<Value>(std::move_iterator(first), std::move_iterator(_values.end()))));
}

Value XmlListParser::_dictionaryOf(const Frame& frame) {
  const std::size_t count = _keys.size() - frame.firstKey;
  _budget.take(MemoryBudget::costOfDictionary(count));
  auto dictionary = std::make_shared<Dictionary>();
  dictionary->reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    Dictionary::Key& key = _keys[frame.firstKey + i];
    dictionary->setValueForKey(std::move(_values[frame.firstValue + i]), key);
    if (dictionary->count() == i + 1) continue;
    throw PropertyListError{"expected every key once in the dictionary that ends here, found " +
                            quotedExcerpt(*key) + " again"};
  }
  return Value::dictionary(std::move(dictionary));
}

void XmlListParser::_finishLeaf() {
  if (_leaf == Element::key) {
    _budget.makeRoom(_keys, _keys.size() + 1);
    _keys.push_back(_pool.textFor(_leafText));
  } else {
    _push(_leafValue());
  }
  _leaf = Element::none;
}

Value XmlListParser::_leafValue() {
  switch (_leaf) {
    case Element::string:
      return Value::string(_pool.textFor(_leafText));
    case Element::integer:
      return Value::integer(integerFromText(_leafText));
    case Element::real:
      return Value::real(realFromText(_leafText));
    case Element::date:
      return Value::date(dateFromText(_leafText));
    case Element::data:
      _budget.take(MemoryBudget::costOfText(_leafText.size()));
      return Value::data(bytesFromBase64(_leafText));
    default:
      return Value::boolean(_leaf == Element::yes);
  }
}

void XmlListParser::_text(std::string_view text) {
  const bool holdsText = _leaf != Element::none && _leaf != Element::yes && _leaf != Element::no;
  if (holdsText) {
    _budget.makeRoom(_leafText, _leafText.size() + text.size());
    _leafText += text;
  } else if (!isBlank(text)) {
    _failFinding("the text " + quotedExcerpt(text));
  }
}

std::string XmlListParser::_expectation() const {
  if (_leaf == Element::yes || _leaf == Element::no) return endTag(_nameOf(_leaf));
  if (_leaf != Element::none) return "text or " + endTag(_nameOf(_leaf));
  if (_frames.empty()) return _isComplete ? "the end of the file" : "<plist>";
  const Frame& frame = _frames.back();
  switch (frame.element) {
    case Element::plist:
      return _values.empty() ? "a value" : "</plist>";
    case Element::dictionary:
      return _awaitsKey(frame) ? "a <key> or </dict>"
                               : "a value for the key " + quotedExcerpt(*_keys.back());
    default:
      return "a value or </array>";
  }
}

void XmlListParser::_failFinding(std::string_view found) const {
  throw PropertyListError{"expected " + _expectation() + ", found " + std::string(found)};
}

std::string XmlListParser::_placed(std::string_view message) const {
  // Expat counts columns from 0.
  return "line " + std::to_string(_expat.line(_parser.get())) + ", column " +
         std::to_string(_expat.column(_parser.get()) + 1) + ": " + std::string(message);
}

std::string XmlListParser::_brokenXml() const {
  std::string found;
  const XML_Error code = _expat.errorCode(_parser.get());
  switch (code) {
    case XML_ERROR_NO_MEMORY:
      return _placed(_libraryBudget.hasRefused()
                         ? "parsing the XML takes more memory than a list may"
                         : "ran out of memory parsing the XML");
    case XML_ERROR_NO_ELEMENTS:
    case XML_ERROR_UNCLOSED_TOKEN:
    case XML_ERROR_UNCLOSED_CDATA_SECTION:
    case XML_ERROR_PARTIAL_CHAR:
      found = "the end of the file";
      break;
    case XML_ERROR_TAG_MISMATCH:
      found = "another end tag";
      break;
    default:
      found = std::string("broken XML (") + _expat.errorText(code) + ')';
  }
  return _placed("expected " + _expectation() + ", found " + found);
}

}  // namespace marlune
