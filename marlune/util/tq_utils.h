#ifndef MARLUNE_UTIL_TQ_UTILS_H_
#define MARLUNE_UTIL_TQ_UTILS_H_

#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "marlune/util/format.h"

namespace marlune {

// Boolean preferences that switch traces on. Each is named as its constant is.
inline constexpr std::string_view ZKPlistErrorDefault = "ZKPlistErrorDefault";
inline constexpr std::string_view ZKPlistNotificationDefault = "ZKPlistNotificationDefault";
inline constexpr std::string_view ZKSnOMilestoneDefault = "ZKSnOMilestoneDefault";
inline constexpr std::string_view ZKSnODetailDefault = "ZKSnODetailDefault";
inline constexpr std::string_view ZKSpeakWordsNotificationDefault =
    "ZKSpeakWordsNotificationDefault";
inline constexpr std::string_view TQUtilsPacketTraceDefault = "TQUtilsPacketTraceDefault";
inline constexpr std::string_view TQUtilsBluetoothTraceDefault = "TQUtilsBluetoothTraceDefault";
inline constexpr std::string_view TQUtilsApplicationTraceDefault = "TQUtilsApplicationTraceDefault";

// The preferences domain of the partner application.
inline constexpr std::string_view VexaPreferencesDomain = "com.example.vexa";

// The library's way of writing diagnostics, and its gateway to preferences. Lines go to the system
// log and, while a log directory is set, to a log file of this run as well. Nothing here ever
// fails towards its caller.
//
// Threads: any, at any time, except the settings (directory, switch, new log file): one at a time,
// meant to be made once, early. A Silence counts for its own thread.
class TQUtils {
 public:
  TQUtils() = delete;

  // Writes an unconditional line. Formats as `formatted` tells.
  template <typename... Arguments>
  static void log(std::string_view format, const Arguments&... arguments) {
    _log(format, {FormatArgument(arguments)...});
  }

  // Writes a line that is wanted only while the boolean preference `key` is true, in the app's own
  // preferences or, with the partner switch on, in the partner's. Decides before it describes any
  // argument: an unwanted line costs a few nanoseconds and allocates nothing.
  template <typename... Arguments>
  static void forDefaultLog(std::string_view key, std::string_view format,
                            const Arguments&... arguments) {
    if (isWantedForDefault(key)) _write(key, format, {FormatArgument(arguments)...});
  }

  // Whether lines under `key` are written just now. The exported keys are looked up again only when
  // preferences have changed, any other key at every call.
  static bool isWantedForDefault(std::string_view key);

  // Writes a line straight to the system log: never to a log file, never keyed.
  template <typename... Arguments>
  static void systemLog(std::string_view format, const Arguments&... arguments) {
    _systemLog(format, {FormatArgument(arguments)...});
  }

  // While one lives, this thread writes no lines, of whatever way: for work that is done a second
  // time and has written its lines the first time. They nest.
  class Silence {
   public:
    Silence();
    ~Silence();
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;
  };

  // Starts a new log file in `directory` and files every later line there too; nullptr stops
  // filing and leaves the open file as it is. The very same object as before changes nothing.
  // The directory must exist (see ensureDirectoryExists).
  static void setShouldLogToFilesInDirectory(std::shared_ptr<const std::string> directory);

  // With true, keyed lines are switched by the partner app's preferences alone.
  static void setShouldUseVexaAppPreferenceKeyForLogging(bool flag);

  // Starts a new log file, "<stamp>_Oskavel.log", in the log directory.
  static void resetLogs();

  // Makes `path` a directory, with its parents. Something else in its place is moved aside first,
  // to "<path>.tmp<n>". What goes wrong is logged.
  static void ensureDirectoryExists(std::string_view path);

  // The partner app's preferences. A value of another kind reads as false or absent; what is set
  // or removed is written at once. True are the boolean, a number other than 0, and the texts "1",
  // "yes" and "true" in any case; a number is a whole one in text too, or a real, truncated.
  static bool vexaUserDefaultsBoolForKey(std::string_view key);
  static std::optional<std::string> vexaUserDefaultsStringForKey(std::string_view key);
  static std::optional<std::int64_t> vexaUserDefaultsNumberForKey(std::string_view key);
  static void vexaUserDefaultsSetString(std::string_view value, std::string_view forKey);
  static void vexaUserDefaultsRemoveObjectForKey(std::string_view key);

  // The time in the local zone as "yyyy-MM-dd-HH-mm-SS". The last field is hundredths of a
  // second, not seconds: file names and stamps have always been so.
  static std::string __dateStringForDate(std::chrono::system_clock::time_point date);

 private:
  static void _log(std::string_view format, std::initializer_list<FormatArgument> arguments);
  static void _systemLog(std::string_view format,
                         std::initializer_list<FormatArgument> arguments) noexcept;
  // Both ways at once; `type` is what the line is filed as.
  static void _write(std::string_view type, std::string_view format,
                     std::initializer_list<FormatArgument> arguments) noexcept;
  static void __logToFileForMessageType(std::string_view type, std::string_view message);
  static bool _lookUpDefault(std::string_view key, bool inPartnerDomain);
};

}  // namespace marlune

#endif  // MARLUNE_UTIL_TQ_UTILS_H_
