#ifndef MARLUNE_DESKTOP_PLIST_PROPERTY_LIST_ERROR_H_
#define MARLUNE_DESKTOP_PLIST_PROPERTY_LIST_ERROR_H_

#include <string>
#include <string_view>

namespace marlune {

// Why a list cannot be read: "expected this, found that". Thrown only inside the parsers; the code
// that catches it adds the position in front.
struct PropertyListError {
  std::string message;
};

// `text` from a file for use in a message: quoted, on one line, truncated if long.
std::string quotedExcerpt(std::string_view text);

// `text` with every control character replaced by a question mark.
std::string onOneLine(std::string_view text);

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_PLIST_PROPERTY_LIST_ERROR_H_
