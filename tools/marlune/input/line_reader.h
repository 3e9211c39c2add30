#ifndef MARLUNE_TOOLS_MARLUNE_INPUT_LINE_READER_H_
#define MARLUNE_TOOLS_MARLUNE_INPUT_LINE_READER_H_

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace marlune::tool {

// Reads standard input line by line, each line on demand. Skips a byte-order mark at the start.
class LineReader {
 public:
  struct Line {
    std::string text;          // without the line feed
    std::string_view fault{};  // why the text is cut off; empty if it is complete
  };

  // Sets what is called before a read that would wait for input: a person at a terminal or a
  // co-process expects the answers to what it has written.
  void setBeforeWaiting(std::function<void()> work) { _beforeWaiting = std::move(work); }

  // The next line, or nothing at the end of input. A line of more than kMostBytes bytes, or one
  // that does not fit in memory, is cut off; its rest is read and dropped. Throws InputError if
  // standard input cannot be read, such as a directory or a closed descriptor.
  std::optional<Line> next();

 private:
  bool _readMore();
  void _take(Line& line, std::size_t count);  // moves `count` bytes from the buffer to the line

  std::function<void()> _beforeWaiting;
  std::string _buffer;
  std::size_t _position = 0;  // of the unread rest of the buffer
  bool _isAtStart = true;
  bool _isAtEnd = false;
};

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_INPUT_LINE_READER_H_
