#include "marlune/util/log_date_formatter.h"

#include <cstdio>
#include <ctime>

namespace marlune {

const LogDateFormatter& LogDateFormatter::shared() {
  static const LogDateFormatter formatter;
  return formatter;
}

// localtime_r alone is not required to read the process's time zone.
LogDateFormatter::LogDateFormatter() { ::tzset(); }

std::string LogDateFormatter::stringForDate(std::chrono::system_clock::time_point date) const {
  const auto second = std::chrono::floor<std::chrono::seconds>(date);
  const std::time_t time = std::chrono::system_clock::to_time_t(second);
  const auto hundredths =
      std::chrono::duration_cast<std::chrono::milliseconds>(date - second).count() / 10;
  std::tm local{};
  ::localtime_r(&time, &local);
  char stamp[96];
  const int length = std::snprintf(stamp, sizeof stamp, "%04d-%02d-%02d-%02d-%02d-%02d",
                                   local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
                                   local.tm_hour, local.tm_min, static_cast<int>(hundredths));
  return std::string(stamp, static_cast<std::size_t>(length));
}

}  // namespace marlune
