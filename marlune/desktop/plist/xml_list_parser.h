#ifndef MARLUNE_DESKTOP_PLIST_XML_LIST_PARSER_H_
#define MARLUNE_DESKTOP_PLIST_XML_LIST_PARSER_H_

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "marlune/desktop/plist/expat_library.h"
#include "marlune/desktop/plist/memory_budget.h"
#include "marlune/desktop/plist/text_pool.h"
#include "marlune/platform/value.h"

namespace marlune {

// Reads the XML form. Opens no other file: a document type may name one, but it is not read, and
// entity declarations are refused. Duplicate keys in a dictionary are refused. Use one parser for
// one list.
//
// Values stay on one flat stack until their container ends and is created at its final size.
// Nothing is moved twice, and a list that breaks off deep inside leaves no deep value to destroy.
class XmlListParser {
 public:
  explicit XmlListParser(std::string_view bytes);

  // The list's value. Throws PropertyListError, whose message names line and column.
  Value parse();

 private:
  enum class Element : unsigned char {
    none,  // also an element unknown in property lists
    plist,
    dictionary,
    array,
    key,
    string,
    integer,
    real,
    yes,
    no,
    data,
    date,
  };
  // An open container. Its content so far is everything on the stacks from these positions.
  struct Frame {
    Element element;
    std::size_t firstValue;
    std::size_t firstKey;
  };
  using Parser = std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)>;

  static Element _elementNamed(std::string_view name);
  static const char* _nameOf(Element element);

  template <typename Work>
  void _guarded(const Work& work) noexcept;
  void _installHandlers();
  void _start(std::string_view name);
  void _end();
  void _text(std::string_view text);

  bool _mayStart(Element element) const;
  bool _awaitsKey(const Frame& dictionary) const;
  void _open(Element container);
  void _close();
  void _push(Value value);
  void _finishLeaf();
  Value _leafValue();
  Value _dictionaryOf(const Frame& frame);
  Value _arrayOf(const Frame& frame);

  std::string _expectation() const;
  [[noreturn]] void _failFinding(std::string_view found) const;
  std::string _placed(std::string_view message) const;
  std::string _brokenXml() const;

  const ExpatLibrary& _expat = ExpatLibrary::shared();
  std::string_view _bytes;
  MemoryBudget _budget;
  MemoryBudget _libraryBudget;  // part of the file's budget
  Parser _parser;
  TextPool _pool;
  std::vector<Frame> _frames;
  std::vector<Value> _values;
  std::vector<Dictionary::Key> _keys;
  Element _leaf = Element::none;  // the open element that contains text
  std::string _leafText;
  bool _isComplete = false;
  std::string _error;  // the first failure of a handler, with its position
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_PLIST_XML_LIST_PARSER_H_
