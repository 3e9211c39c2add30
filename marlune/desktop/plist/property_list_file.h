#ifndef MARLUNE_DESKTOP_PLIST_PROPERTY_LIST_FILE_H_
#define MARLUNE_DESKTOP_PLIST_PROPERTY_LIST_FILE_H_

#include <string>
#include <string_view>

#include "marlune/platform/property_list_reader.h"

namespace marlune {

// Reads property lists from files, in the XML and the binary form. Holds no state.
//
// A file of more than 64 MiB, one that is no regular file and one in the old-style text form are
// refused; so are more than 256 levels of nesting, a key that stands twice in one dictionary, and
// a list that would take more memory than 26 times its file and 16 MiB, or than 656 MiB: one whose
// objects hold each other again and again. An error begins with the
// file's name and goes on with the place: "line 7, column 12" (both from 1, in characters) or
// "byte 96" (from 0).
//
// Threads: any, at any time.
class PropertyListFile : public PropertyListReader {
 public:
  Result readFile(const std::string& path) const noexcept override;

  // The list that `bytes` hold. `name` is what errors begin with; none when it is empty.
  Result readBytes(std::string_view bytes, std::string_view name) const noexcept;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_PLIST_PROPERTY_LIST_FILE_H_
