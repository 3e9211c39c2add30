#ifndef MARLUNE_TOOLS_MARLUNE_CAPTURED_LOG_H_
#define MARLUNE_TOOLS_MARLUNE_CAPTURED_LOG_H_

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "marlune/platform/system_log.h"

namespace marlune::tool {

// While it stands, keeps the lines that go to the system log instead of showing them. One at a
// time, and only while nothing else is at work in the process. The first kMostLines: of those
// behind them a last line tells how many there were.
class CapturedLog {
 public:
  // Messages are what is left without the two lines of each comparison by a prefix or suffix key:
  // those can be millions.
  enum class Kept { messages, everything };

  explicit CapturedLog(Kept kept = Kept::messages);
  ~CapturedLog();  // what logged before logs again; what was kept is gone
  CapturedLog(const CapturedLog&) = delete;
  CapturedLog& operator=(const CapturedLog&) = delete;

  std::vector<std::string> lines() const;

 private:
  static constexpr std::size_t kMostLines = 200000;

  class Lines : public SystemLog {
   public:
    explicit Lines(Kept which) : _which(which) {}
    void write(std::string_view message) noexcept override;
    std::vector<std::string> kept;
    std::size_t left = 0;

   private:
    const Kept _which;
  };

  const std::shared_ptr<Lines> _lines;
  const std::shared_ptr<SystemLog> _former;
};

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_CAPTURED_LOG_H_
