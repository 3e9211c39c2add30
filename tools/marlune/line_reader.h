#ifndef MARLUNE_TOOLS_MARLUNE_LINE_READER_H_
#define MARLUNE_TOOLS_MARLUNE_LINE_READER_H_

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace marlune::tool {

// The lines of standard input, each read only when it is asked for. A byte-order mark at its start
// is left out.
class LineReader {
 public:
  struct Line {
    std::string text;          // without its line feed
    std::string_view fault{};  // why the text is cut off; empty when it is whole
  };

  // The next line; nothing at the end. One of more than kMostBytes bytes, or too long for the
  // memory there is, is cut off, and its rest is read and dropped. Throws InputError when standard
  // input cannot be read: a directory, a closed descriptor.
  std::optional<Line> next();

 private:
  bool _readMore();
  void _take(Line& line, std::size_t count);  // moves so many bytes of the buffer into the line

  std::string _buffer;
  std::size_t _position = 0;  // of what is unread in the buffer
  bool _isAtStart = true;
  bool _isAtEnd = false;
};

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_LINE_READER_H_
