#ifndef MARLUNE_UTIL_TQ_UTILS_H_
#define MARLUNE_UTIL_TQ_UTILS_H_

#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "marlune/platform/visibility.h"
#include "marlune/util/format.h"

namespace marlune {

class SystemLog;

// Boolean preferences that switch traces on. The value of each constant is its own name.
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

// Writes the library's diagnostics and gives access to preferences. Lines go to the system log and,
// while a log directory is set, also to a log file of this run. Nothing here reports a failure to
// the caller.
//
// Threads: any, at any time, except the settings (directory, switch, new log file): change them
// from one thread at a time, early. A Silence applies to its own thread.
class MARLUNE_API TQUtils {
 public:
  TQUtils() = delete;

  // Writes an unconditional line, formatted as by `formatted`.
  template <typename... Arguments>
  static void log(std::string_view format, const Arguments&... arguments) {
    _log(format, {FormatArgument(arguments)...});
  }

  // Writes a line only while the boolean preference `key` is true in the app's own preferences or,
  // with the partner switch on, in the partner's. The check comes before any argument is described:
  // an unwanted line costs a few nanoseconds and allocates nothing.
  template <typename... Arguments>
  static void forDefaultLog(std::string_view key, std::string_view format,
                            const Arguments&... arguments) {
    if (isWantedForDefault(key)) _write(key, format, {FormatArgument(arguments)...});
  }

  // Whether lines under `key` are written now. Exported keys are looked up again only after
  // preferences have changed, any other key at every call.
  static bool isWantedForDefault(std::string_view key);

  // Writes a line only to the system log, never to a log file, and without a key.
  template <typename... Arguments>
  static void systemLog(std::string_view format, const Arguments&... arguments) {
    _systemLog(format, {FormatArgument(arguments)...});
  }

  // While one exists, this thread logs nothing. Used when work that has already logged its lines is
  // repeated. Silences nest.
  class Silence {
   public:
    Silence();
    ~Silence();
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;
  };

  // While one exists, it receives what this thread would write to the system log, and log files
  // receive nothing. Captures nest: the innermost one receives the lines.
  class Capture {
   public:
    enum class Kept { messages, everything };  // `messages`: without the lines of comparisons

    // The log must outlive the object.
    explicit Capture(SystemLog& log, Kept kept = Kept::messages)
        : _log(log), _kept(kept), _outer(_innermostCapture()) {
      _innermostCapture() = this;
    }
    ~Capture() { _innermostCapture() = _outer; }
    Capture(const Capture&) = delete;
    Capture& operator=(const Capture&) = delete;

   private:
    friend TQUtils;

    SystemLog& _log;
    const Kept _kept;
    const Capture* const _outer;
  };

  // A line straight to the system log about one comparison of a pattern with a word. There can be
  // millions, so a Capture may leave them out.
  template <typename... Arguments>
  static void comparisonLog(std::string_view format, const Arguments&... arguments) {
    const Capture* const capture = _innermostCapture();
    if (capture && capture->_kept == Capture::Kept::messages) return;
    systemLog(format, arguments...);
  }

  // Starts a new log file in `directory` and writes every later line to it too. nullptr stops that
  // and leaves the open file unchanged. Passing the same object as before has no effect. The
  // directory must exist (see ensureDirectoryExists).
  static void setShouldLogToFilesInDirectory(std::shared_ptr<const std::string> directory);

  // If true, keyed lines are switched by the partner app's preferences alone.
  static void setShouldUseVexaAppPreferenceKeyForLogging(bool flag);

  // Starts a new log file, "<stamp>_Oskavel.log", in the log directory.
  static void resetLogs();

  // Creates the directory `path`, with its parents. Anything else at the path is first moved to
  // "<path>.tmp<n>". Failures are logged.
  static void ensureDirectoryExists(std::string_view path);

  // The partner app's preferences. A value of another kind reads as false or absent; a value set or
  // removed is written at once. True values are the boolean, a number other than 0, and the texts
  // "1", "yes" and "true" in any case. A number may also be the text of a whole number, or a real,
  // which is truncated.
  static bool vexaUserDefaultsBoolForKey(std::string_view key);
  static std::optional<std::string> vexaUserDefaultsStringForKey(std::string_view key);
  static std::optional<std::int64_t> vexaUserDefaultsNumberForKey(std::string_view key);
  static void vexaUserDefaultsSetString(std::string_view value, std::string_view forKey);
  static void vexaUserDefaultsRemoveObjectForKey(std::string_view key);

  // The time in the local zone as "yyyy-MM-dd-HH-mm-SS". The last field is hundredths of a second,
  // not seconds; the names of log files depend on it.
  static std::string __dateStringForDate(std::chrono::system_clock::time_point date);

 private:
  static void _log(std::string_view format, std::initializer_list<FormatArgument> arguments);
  static void _systemLog(std::string_view format,
                         std::initializer_list<FormatArgument> arguments) noexcept;
  static const Capture*& _innermostCapture();  // of this thread
  // Writes to the system log and the log file; `type` is the type of the line in the file.
  static void _write(std::string_view type, std::string_view format,
                     std::initializer_list<FormatArgument> arguments) noexcept;
  static void __logToFileForMessageType(std::string_view type, std::string_view message);
  static bool _lookUpDefault(std::string_view key, bool inPartnerDomain);
};

}  // namespace marlune

#endif  // MARLUNE_UTIL_TQ_UTILS_H_
