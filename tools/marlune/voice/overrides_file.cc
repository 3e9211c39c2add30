#include "tools/marlune/voice/overrides_file.h"

#include <string_view>

#include "marlune/desktop/plist/property_list_file.h"
#include "marlune/platform/value.h"
#include "tools/marlune/input/composed_list_reader.h"
#include "tools/marlune/input/input_error.h"

namespace marlune::tool {

namespace {

// Reads the tables of one file. Keeps the file's name for error messages.
class OverridesReader {
 public:
  explicit OverridesReader(const std::string& path) : _path(path) {}

  Overrides read() const {
    const Result<Value> list = ComposedListReader().readFile(_path);
    if (!list.succeeded()) throw InputError(list.failure().message);
    const Value& root = list.value();
    if (!root.asDictionary()) {
      throw InputError(_path + ": expected a dictionary with \"whole\" and \"parts\", found " +
                       _article(root));
    }
    Overrides overrides;
    for (const auto& [key, value] : root.asDictionary()->entries()) {
      if (*key == "whole") {
        overrides.whole = _table(*key, value);
      } else if (*key == "parts") {
        overrides.parts = _table(*key, value);
      } else {
        _fail(*key, "the tables are \"whole\" and \"parts\"");
      }
    }
    return overrides;
  }

 private:
  DecomposerDelegate::Overrides _table(const std::string& name, const Value& value) const {
    if (!value.asDictionary()) _fail(name, "expected a dictionary, found " + _article(value));
    DecomposerDelegate::Overrides table;
    for (const auto& [key, names] : value.asDictionary()->entries()) {
      const std::string place = name + "." + *key;
      if (key->find(' ') != std::string::npos) {
        _fail(place, "no phrase has this key: its words are joined with \"_\"");
      }
      if (key->find("_[") != std::string::npos) {
        _fail(place, "no phrase has this key: a bracket stands right behind its word");
      }
      table.emplace(*key, _recordings(place, names));
    }
    return table;
  }

  std::vector<std::string> _recordings(const std::string& place, const Value& value) const {
    if (!value.asArray()) {
      _fail(place, "expected an array of recordings' names, found " + _article(value));
    }
    std::vector<std::string> names;
    for (const Value& name : value.asArray()->elements()) {
      const std::string here = place + "[" + std::to_string(names.size()) + "]";
      if (!name.asString()) _fail(here, "expected a recording's name, found " + _article(name));
      names.push_back(*name.asString());
    }
    return names;
  }

  static std::string _article(const Value& value) {
    const std::string kind(value.kindName());
    return (kind == "array" ? "an " : "a ") + kind;
  }

  [[noreturn]] void _fail(const std::string& place, const std::string& cause) const {
    throw InputError(_path + ": " + place + ": " + cause);
  }

  const std::string& _path;
};

}  // namespace

Overrides readOverridesFile(const std::string& path) { return OverridesReader(path).read(); }

}  // namespace marlune::tool
