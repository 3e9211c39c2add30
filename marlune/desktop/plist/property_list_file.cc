#include "marlune/desktop/plist/property_list_file.h"

#include <exception>

#include "marlune/desktop/plist/binary_list_parser.h"
#include "marlune/desktop/plist/property_list_error.h"
#include "marlune/desktop/plist/property_list_limits.h"
#include "marlune/desktop/plist/regular_file.h"
#include "marlune/desktop/plist/xml_list_parser.h"

namespace marlune {

namespace {

bool looksLikeXml(std::string_view bytes) {
  // UTF-16 is recognised by its byte order mark; in any other encoding "<" is the first character.
  if (bytes.starts_with("\xfe\xff") || bytes.starts_with("\xff\xfe")) return true;
  if (bytes.starts_with("\xef\xbb\xbf")) bytes.remove_prefix(3);
  const std::size_t first = bytes.find_first_not_of(" \t\r\n");
  return first != std::string_view::npos && bytes[first] == '<';
}

bool looksLikeOldStyleText(std::string_view bytes) {
  const std::size_t first = bytes.find_first_not_of(" \t\r\n");
  return first != std::string_view::npos &&
         std::string_view("{(\"'/").find(bytes[first]) != std::string_view::npos;
}

Value valueOfBytes(std::string_view bytes) {
  if (BinaryListParser::looksBinary(bytes)) return BinaryListParser(bytes).parse();
  if (looksLikeXml(bytes)) return XmlListParser(bytes).parse();
  if (bytes.empty()) throw PropertyListError{"expected a property list, found an empty file"};
  if (looksLikeOldStyleText(bytes)) {
    throw PropertyListError{
        "expected an XML or binary property list, found the old-style text form, which has no "
        "numbers; convert it to XML"};
  }
  throw PropertyListError{"expected an XML or binary property list, found something else"};
}

Failure failureOf(std::string_view name, std::string_view message, Failure::Kind kind) {
  if (name.empty()) return {kind, std::string(message)};
  return {kind, onOneLine(name) + ": " + std::string(message)};
}

// `bytes` returns the file's content.
template <typename Bytes>
Result<Value> resultOf(std::string_view name, const Bytes& bytes) noexcept {
  Failure::Kind kind = Failure::Kind::unreadable;
  try {
    try {
      const auto content = bytes();
      kind = Failure::Kind::malformed;
      return valueOfBytes(content);
    } catch (const PropertyListError& error) {
      return failureOf(name, error.message, kind);
    } catch (const std::exception&) {
      return failureOf(name, "out of memory", Failure::Kind::unreadable);
    }
  } catch (...) {
    return Failure::unreadable("out of memory");
  }
}

}  // namespace

Result<Value> PropertyListFile::readFile(const std::string& path) const noexcept {
  return resultOf(path, [&] { return contentOfRegularFile(path); });
}

Result<Value> PropertyListFile::readBytes(std::string_view bytes,
                                          std::string_view name) const noexcept {
  return resultOf(name, [&] {
    if (bytes.size() > kMostPropertyListBytes) {
      throw PropertyListError{"expected at most 64 MiB, found more"};
    }
    return bytes;
  });
}

}  // namespace marlune
