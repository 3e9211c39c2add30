#ifndef MARLUNE_TOOLS_MARLUNE_COMPOSED_LIST_READER_H_
#define MARLUNE_TOOLS_MARLUNE_COMPOSED_LIST_READER_H_

#include "marlune/platform/property_list_reader.h"

namespace marlune::tool {

// Reads property-list files with all text in normal form C, keys included: phrases and the names of
// recordings come in this form, and words are compared byte by byte.
class ComposedListReader : public PropertyListReader {
 public:
  Result readFile(const std::string& path) const noexcept override;
};

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_COMPOSED_LIST_READER_H_
