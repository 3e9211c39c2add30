#include "tools/marlune/input/line_reader.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <new>

#include "tools/marlune/input/input_error.h"
#include "tools/marlune/input/phrase_limits.h"
#include "tools/marlune/text/system_cause.h"

namespace marlune::tool {

std::optional<LineReader::Line> LineReader::next() {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (_position == _buffer.size() && !_readMore()) return std::nullopt;
  Line line;
  std::size_t end = std::string::npos;
  do {
    end = _buffer.find('\n', _position);
    _take(line, std::min(end, _buffer.size()) - _position);
  } while (end == std::string::npos && _readMore());
  if (end != std::string::npos) ++_position;
  if (_isAtStart && line.text.starts_with(kByteOrderMark)) line.text.erase(0, 3);
  _isAtStart = false;
  return line;
}

void LineReader::_take(Line& line, std::size_t count) {
  const std::size_t room = kMostBytes - line.text.size();
  _position += count;
  if (!line.fault.empty()) return;
  if (count > room) line.fault = kTooLong;
  try {
    line.text.append(_buffer, _position - count, std::min(count, room));
  } catch (const std::bad_alloc&) {
    line.fault = kOutOfMemory;
  }
}

bool LineReader::_readMore() {
  constexpr std::size_t kBlock = 65536;
  if (_isAtEnd) return false;  // a terminal could deliver more after its end of file
  pollfd input = {STDIN_FILENO, POLLIN, 0};
  if (_beforeWaiting && ::poll(&input, 1, 0) == 0) _beforeWaiting();
  _buffer.resize(kBlock);
  _position = 0;
  ssize_t count = 0;
  do {
    count = ::read(STDIN_FILENO, _buffer.data(), kBlock);
  } while (count < 0 && errno == EINTR);
  _buffer.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
  if (count < 0) throw InputError("standard input cannot be read: " + systemCause(errno));
  _isAtEnd = count == 0;
  return !_isAtEnd;
}

}  // namespace marlune::tool
