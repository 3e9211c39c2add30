#ifndef MARLUNE_TESTS_FAKES_FAKE_PROPERTY_LIST_READER_H_
#define MARLUNE_TESTS_FAKES_FAKE_PROPERTY_LIST_READER_H_

#include <atomic>
#include <map>
#include <string>

#include "marlune/platform/property_list_reader.h"

namespace marlune {

// In-memory files, readable on any thread. Like the real reader, every read returns containers with
// one holder.
class FakePropertyListReader : public PropertyListReader {
 public:
  std::map<std::string, Value> files;
  mutable std::atomic<int> reads = 0;

  Result<Value> readFile(const std::string& path) const noexcept override {
    ++reads;
    const auto found = files.find(path);
    if (found == files.end()) return Failure::unreadable("no file at " + path);
    return _copy(found->second);
  }

 private:
  static Value _copy(const Value& value) {
    if (value.asDictionary()) {
      auto entries = std::make_shared<Dictionary>();
      for (const auto& [key, nested] : value.asDictionary()->entries()) {
        entries->setValueForKey(_copy(nested), key);
      }
      return Value::dictionary(std::move(entries));
    }
    if (value.asArray()) {
      auto elements = std::make_shared<Array>();
      for (const Value& nested : value.asArray()->elements()) {
        elements->elements().push_back(_copy(nested));
      }
      return Value::array(std::move(elements));
    }
    return value;
  }
};

}  // namespace marlune

#endif  // MARLUNE_TESTS_FAKES_FAKE_PROPERTY_LIST_READER_H_
