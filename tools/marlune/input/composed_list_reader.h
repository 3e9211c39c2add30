#ifndef MARLUNE_TOOLS_MARLUNE_INPUT_COMPOSED_LIST_READER_H_
#define MARLUNE_TOOLS_MARLUNE_INPUT_COMPOSED_LIST_READER_H_

#include "marlune/platform/property_list_reader.h"

namespace marlune::tool {

// Reads property-list files and converts all text, keys included, to normal form C. Phrases and the
// names of recordings use the same form, and words are compared byte by byte.
class ComposedListReader : public PropertyListReader {
 public:
  Result<Value> readFile(const std::string& path) const noexcept override;
};

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_INPUT_COMPOSED_LIST_READER_H_
