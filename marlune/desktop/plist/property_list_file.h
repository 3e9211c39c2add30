#ifndef MARLUNE_DESKTOP_PLIST_PROPERTY_LIST_FILE_H_
#define MARLUNE_DESKTOP_PLIST_PROPERTY_LIST_FILE_H_

#include <string>
#include <string_view>

#include "marlune/platform/property_list_reader.h"
#include "marlune/platform/visibility.h"

namespace marlune {

// Reads property lists from files, in the XML and the binary form. Stateless.
//
// Refuses a file of more than 64 MiB, one that is not a regular file, the old-style text form, more
// than 256 levels of nesting, a duplicate key in a dictionary, and a list that would take more
// memory than 26 times its file plus 16 MiB, or more than 656 MiB, which happens only if its
// objects refer to each other many times. An error starts with the file's name and the position:
// "line 7, column 12" (both from 1, in characters) or "byte 96" (from 0).
//
// Threads: any, at any time.
class MARLUNE_API PropertyListFile : public PropertyListReader {
 public:
  Result<Value> readFile(const std::string& path) const noexcept override;

  // The list in `bytes`. Errors start with `name`, unless it is empty.
  Result<Value> readBytes(std::string_view bytes, std::string_view name) const noexcept;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_PLIST_PROPERTY_LIST_FILE_H_
