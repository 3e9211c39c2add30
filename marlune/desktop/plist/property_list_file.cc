#include "marlune/desktop/plist/property_list_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <exception>
#include <system_error>

#include "marlune/desktop/plist/binary_list_parser.h"
#include "marlune/desktop/plist/property_list_error.h"
#include "marlune/desktop/plist/property_list_limits.h"
#include "marlune/desktop/plist/xml_list_parser.h"

namespace marlune {

namespace {

class OpenFile {
 public:
  // Not blocking: opening a FIFO that nobody writes to would wait for ever otherwise.
  explicit OpenFile(const char* path)
      : _descriptor(::open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY)) {
    if (_descriptor < 0) _fail();
  }
  ~OpenFile() {
    if (_descriptor >= 0) ::close(_descriptor);
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  std::string content() const {
    std::string bytes(_checkedSize(), '\0');
    std::size_t filled = 0;
    while (filled < bytes.size()) {
      const ssize_t got = ::read(_descriptor, bytes.data() + filled, bytes.size() - filled);
      if (got < 0 && errno != EINTR) _fail();
      if (got == 0) break;  // it has become shorter meanwhile
      if (got > 0) filled += static_cast<std::size_t>(got);
    }
    bytes.resize(filled);
    return bytes;
  }

 private:
  [[noreturn]] static void _fail() {
    throw PropertyListError{std::generic_category().message(errno)};
  }

  std::size_t _checkedSize() const {
    struct stat status;
    if (::fstat(_descriptor, &status) != 0) _fail();
    if (!S_ISREG(status.st_mode)) {
      throw PropertyListError{std::string("expected a regular file, found ") +
                              _kindOf(status.st_mode)};
    }
    if (status.st_size > static_cast<off_t>(kMostPropertyListBytes)) {
      throw PropertyListError{"expected at most 64 MiB, found " + std::to_string(status.st_size) +
                              " bytes"};
    }
    return static_cast<std::size_t>(status.st_size);
  }

  static const char* _kindOf(mode_t mode) {
    if (S_ISDIR(mode)) return "a directory";
    if (S_ISFIFO(mode)) return "a FIFO";
    if (S_ISSOCK(mode)) return "a socket";
    return "a device";
  }

  int _descriptor;
};

bool looksLikeXml(std::string_view bytes) {
  // UTF-16 is recognised by its byte order mark; everything else has "<" as its first character.
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

PropertyListReader::Result failure(std::string_view name, std::string_view message) {
  if (name.empty()) return {Value(), std::string(message)};
  return {Value(), onOneLine(name) + ": " + std::string(message)};
}

template <typename MakeValue>
PropertyListReader::Result resultOf(std::string_view name, const MakeValue& makeValue) noexcept {
  try {
    try {
      return {makeValue(), ""};
    } catch (const PropertyListError& error) {
      return failure(name, error.message);
    } catch (const std::exception&) {
      return failure(name, "out of memory");
    }
  } catch (...) {
    return {Value(), "out of memory"};
  }
}

}  // namespace

PropertyListReader::Result PropertyListFile::readFile(const std::string& path) const noexcept {
  return resultOf(path, [&] { return valueOfBytes(OpenFile(path.c_str()).content()); });
}

PropertyListReader::Result PropertyListFile::readBytes(std::string_view bytes,
                                                       std::string_view name) const noexcept {
  return resultOf(name, [&] {
    if (bytes.size() > kMostPropertyListBytes) {
      throw PropertyListError{"expected at most 64 MiB, found more"};
    }
    return valueOfBytes(bytes);
  });
}

}  // namespace marlune
