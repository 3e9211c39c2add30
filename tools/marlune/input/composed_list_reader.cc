#include "tools/marlune/input/composed_list_reader.h"

#include <algorithm>
#include <memory>

#include "marlune/desktop/plist/property_list_file.h"
#include "marlune/desktop/text/normal_form.h"

namespace marlune::tool {

namespace {

// ASCII is already in normal form C; nearly all text is ASCII, so it is not copied.
bool isAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

Value composed(Value value);

std::shared_ptr<Dictionary> composedEntries(const Dictionary& entries) {
  auto result = std::make_shared<Dictionary>();
  result->reserve(entries.count());
  for (const auto& [key, value] : entries.entries()) {
    if (isAscii(*key)) {
      result->setValueForKey(composed(value), key);
    } else {
      result->setValueForKey(composed(value), inNormalFormC(*key));
    }
  }
  return result;
}

// Recursive: the reader limits the depth of a file.
Value composed(Value value) {
  if (value.asDictionary()) return Value::dictionary(composedEntries(*value.asDictionary()));
  if (value.asArray()) {
    for (Value& element : value.asArray()->elements()) element = composed(std::move(element));
  } else if (value.asString() && !isAscii(*value.asString())) {
    return Value::string(inNormalFormC(*value.asString()));
  }
  return value;
}

}  // namespace

Result<Value> ComposedListReader::readFile(const std::string& path) const noexcept {
  Result<Value> result = PropertyListFile().readFile(path);
  if (!result.succeeded()) return result;
  try {
    return composed(std::move(result.value()));
  } catch (const std::bad_alloc&) {
    return Failure::unreadable("ran out of memory");
  }
}

}  // namespace marlune::tool
