#ifndef MARLUNE_GRAMMAR_MODEL_ATTRIBUTE_KEY_H_
#define MARLUNE_GRAMMAR_MODEL_ATTRIBUTE_KEY_H_

#include <cstdint>
#include <memory>
#include <string>

#include "marlune/platform/value.h"
#include "marlune/platform/visibility.h"

namespace marlune {

// Refers to an attribute of a matched word: the word's position in the matched stretch, from 0, and
// the attribute's name. Immutable.
class MARLUNE_API AttributeKey {
 public:
  // Shares the name. REQUIRES: attributeName is not null.
  static std::shared_ptr<AttributeKey> initWithIndex(
      std::int32_t index, std::shared_ptr<const std::string> attributeName);

  // Reads a dictionary with a number under "_index" and a string under "_attribute"; other entries
  // are ignored. For anything else, writes a line straight to the system log and returns nullptr.
  static std::shared_ptr<AttributeKey> initFromPlist(const Value& plist);
  static std::shared_ptr<AttributeKey> instanceFromPlist(const Value& plist);

  std::int32_t index() const { return _index; }
  const std::string& key() const { return *_key; }
  const std::shared_ptr<const std::string>& sharedKey() const { return _key; }

 protected:
  AttributeKey(std::int32_t index, std::shared_ptr<const std::string> key);

 private:
  std::shared_ptr<const std::string> _key;
  std::int32_t _index;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_ATTRIBUTE_KEY_H_
