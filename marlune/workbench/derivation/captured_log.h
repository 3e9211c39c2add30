#ifndef MARLUNE_WORKBENCH_DERIVATION_CAPTURED_LOG_H_
#define MARLUNE_WORKBENCH_DERIVATION_CAPTURED_LOG_H_

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "marlune/platform/system_log.h"

namespace marlune {

// While one exists, captures what goes to the system log instead of showing it. At most one may
// exist at a time, and no other thread may be logging. Keeps the first kMostLines lines; a final
// line gives the number of those dropped.
class CapturedLog {
 public:
  // `messages` leaves out the lines of comparisons with a prefix key: there can be millions.
  enum class Kept { messages, everything };

  explicit CapturedLog(Kept kept = Kept::messages);
  ~CapturedLog();  // restores the former log
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

}  // namespace marlune

#endif  // MARLUNE_WORKBENCH_DERIVATION_CAPTURED_LOG_H_
