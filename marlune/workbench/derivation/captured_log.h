#ifndef MARLUNE_WORKBENCH_DERIVATION_CAPTURED_LOG_H_
#define MARLUNE_WORKBENCH_DERIVATION_CAPTURED_LOG_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "marlune/platform/system_log.h"
#include "marlune/util/tq_utils.h"

namespace marlune {

// While one exists, keeps what this thread would write to the system log. Keeps the first
// kMostLines lines; a final line gives the number of those dropped.
class CapturedLog {
 public:
  using Kept = TQUtils::Capture::Kept;

  explicit CapturedLog(Kept kept = Kept::messages) : _capture(_lines, kept) {}

  std::vector<std::string> lines() const;

 private:
  static constexpr std::size_t kMostLines = 200000;

  class Lines : public SystemLog {
   public:
    void write(std::string_view message) noexcept override;
    std::vector<std::string> kept;
    std::size_t left = 0;
  };

  Lines _lines;
  const TQUtils::Capture _capture;
};

}  // namespace marlune

#endif  // MARLUNE_WORKBENCH_DERIVATION_CAPTURED_LOG_H_
