#ifndef MARLUNE_UTIL_LOG_DATE_FORMATTER_H_
#define MARLUNE_UTIL_LOG_DATE_FORMATTER_H_

#include <chrono>
#include <string>

namespace marlune {

// Turns times into the stamps of log files and their lines: "yyyy-MM-dd-HH-mm-SS" in the time zone
// that the process had when the first stamp was made.
class LogDateFormatter {
 public:
  // The one formatter, made at the first call. Any thread.
  static const LogDateFormatter& shared();

  // The stamp of `date`. Its last field is hundredths of a second, not seconds: file names and
  // stamps have always been so.
  std::string stringForDate(std::chrono::system_clock::time_point date) const;

 private:
  LogDateFormatter();
};

}  // namespace marlune

#endif  // MARLUNE_UTIL_LOG_DATE_FORMATTER_H_
