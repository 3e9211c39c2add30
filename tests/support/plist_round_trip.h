#ifndef MARLUNE_TESTS_SUPPORT_PLIST_ROUND_TRIP_H_
#define MARLUNE_TESTS_SUPPORT_PLIST_ROUND_TRIP_H_

#include <optional>
#include <string>
#include <string_view>

#include "marlune/desktop/plist/property_list_file.h"
#include "marlune/desktop/plist/xml_list_writer.h"
#include "support/list_read.h"

namespace marlune {

// Checks a property of any bytes: they are refused with one line, or they give a list that is equal
// after writing it as XML and reading it again. Returns the violation, or nothing if there is none.
inline std::optional<std::string> faultOfReading(std::string_view bytes) {
  const PropertyListFile reader;
  const ListRead first = reader.readBytes(bytes, "f");
  if (first.root.isAbsent()) {
    const bool isLine =
        first.error.starts_with("f: ") && first.error.find('\n') == std::string::npos;
    return isLine ? std::nullopt : std::optional("refused with \"" + first.error + '"');
  }
  if (!first.error.empty()) return "read successfully, but with the error " + first.error;
  const std::optional<std::string> xml = writePropertyListXml(first.root);
  if (!xml) return "not written";
  if (xml->find("\xef\xbf\xbd") != std::string::npos) return std::nullopt;  // perhaps replaced
  const ListRead second = reader.readBytes(*xml, "f");
  if (second.root.isAbsent()) return "not read again: " + second.error;
  const bool hasNan = xml->find("<real>nan</real>") != std::string::npos;  // equals nothing
  if (!hasNan && !first.root.equals(second.root)) return "differs after rereading: " + *xml;
  if (writePropertyListXml(second.root) != xml) return "differs after rewriting: " + *xml;
  return std::nullopt;
}

}  // namespace marlune

#endif  // MARLUNE_TESTS_SUPPORT_PLIST_ROUND_TRIP_H_
