#ifndef MARLUNE_TESTS_SUPPORT_PLIST_ROUND_TRIP_H_
#define MARLUNE_TESTS_SUPPORT_PLIST_ROUND_TRIP_H_

#include <optional>
#include <string>
#include <string_view>

#include "marlune/desktop/plist/property_list_file.h"
#include "marlune/desktop/plist/xml_list_writer.h"

namespace marlune {

// What must hold whatever the bytes are: they are refused in one line, or they make a list that
// is written as XML and comes back equal. What does not hold, or nothing when all does.
inline std::optional<std::string> faultOfReading(std::string_view bytes) {
  const PropertyListFile reader;
  const PropertyListReader::Result first = reader.readBytes(bytes, "f");
  if (first.root.isAbsent()) {
    const bool isLine =
        first.error.starts_with("f: ") && first.error.find('\n') == std::string::npos;
    return isLine ? std::nullopt : std::optional("refused with \"" + first.error + '"');
  }
  if (!first.error.empty()) return "read, with the error " + first.error;
  const std::optional<std::string> xml = writePropertyListXml(first.root);
  if (!xml) return "not written";
  if (xml->find("\xef\xbf\xbd") != std::string::npos) return std::nullopt;  // was replaced, perhaps
  const PropertyListReader::Result second = reader.readBytes(*xml, "f");
  if (second.root.isAbsent()) return "not read again: " + second.error;
  const bool hasNan = xml->find("<real>nan</real>") != std::string::npos;  // equals nothing
  if (!hasNan && !first.root.equals(second.root)) return "read again as another: " + *xml;
  if (writePropertyListXml(second.root) != xml) return "written again as another: " + *xml;
  return std::nullopt;
}

}  // namespace marlune

#endif  // MARLUNE_TESTS_SUPPORT_PLIST_ROUND_TRIP_H_
