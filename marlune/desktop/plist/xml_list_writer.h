#ifndef MARLUNE_DESKTOP_PLIST_XML_LIST_WRITER_H_
#define MARLUNE_DESKTOP_PLIST_XML_LIST_WRITER_H_

#include <optional>
#include <string>

#include "marlune/platform/value.h"

namespace marlune {

// `value` as an XML property list, indented with tabs. Reading it gives an equal value, except that
// what XML cannot represent (most control characters, bytes that are not UTF-8) is written as
// U+FFFD. Returns nothing if the value is absent, nests too deeply, or contains a date outside the
// years 1 to 9999.
std::optional<std::string> writePropertyListXml(const Value& value);

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_PLIST_XML_LIST_WRITER_H_
