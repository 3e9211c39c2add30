#ifndef MARLUNE_TESTS_FAKES_FAKE_SYSTEM_LOG_H_
#define MARLUNE_TESTS_FAKES_FAKE_SYSTEM_LOG_H_

#include <algorithm>
#include <mutex>
#include <string>
#include <vector>

#include "marlune/platform/system_log.h"

namespace marlune {

// A system log that keeps its messages. Any thread.
class FakeSystemLog : public SystemLog {
 public:
  void write(std::string_view message) noexcept override {
    const std::lock_guard lock(_mutex);
    _lines.emplace_back(message);
  }

  // The messages so far, in order; a message with line feeds counts as one.
  std::vector<std::string> lines() const {
    const std::lock_guard lock(_mutex);
    return _lines;
  }
  bool contains(std::string_view line) const {
    const std::lock_guard lock(_mutex);
    return std::find(_lines.begin(), _lines.end(), line) != _lines.end();
  }
  void clear() {
    const std::lock_guard lock(_mutex);
    _lines.clear();
  }

 private:
  mutable std::mutex _mutex;
  std::vector<std::string> _lines;
};

}  // namespace marlune

#endif  // MARLUNE_TESTS_FAKES_FAKE_SYSTEM_LOG_H_
