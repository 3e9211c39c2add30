#ifndef MARLUNE_DESKTOP_PLIST_PROPERTY_LIST_ERROR_H_
#define MARLUNE_DESKTOP_PLIST_PROPERTY_LIST_ERROR_H_

#include <string>
#include <string_view>

namespace marlune {

// Why a list cannot be read: "expected this, found that". Thrown inside the parsers only; whoever
// catches it knows the place and puts it in front.
struct PropertyListError {
  std::string message;
};

// `text` from a file as a message shows it: in quotes, on one line, cut when it is long.
std::string quotedExcerpt(std::string_view text);

// `text` with every control character replaced by a question mark.
std::string onOneLine(std::string_view text);

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_PLIST_PROPERTY_LIST_ERROR_H_
