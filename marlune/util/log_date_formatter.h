#ifndef MARLUNE_UTIL_LOG_DATE_FORMATTER_H_
#define MARLUNE_UTIL_LOG_DATE_FORMATTER_H_

#include <chrono>
#include <string>

namespace marlune {

// Formats times as the stamps of log files and their lines: "yyyy-MM-dd-HH-mm-SS" in the time zone
// that the process had when the first stamp was made.
class LogDateFormatter {
 public:
  // The shared formatter, created at the first call. Any thread.
  static const LogDateFormatter& shared();

  // The stamp of `date`. The last field is hundredths of a second, not seconds; the names of log
  // files depend on it.
  std::string stringForDate(std::chrono::system_clock::time_point date) const;

 private:
  LogDateFormatter();
};

}  // namespace marlune

#endif  // MARLUNE_UTIL_LOG_DATE_FORMATTER_H_
