#include "marlune/util/tq_utils.h"

#include <array>
#include <atomic>
#include <exception>
#include <iterator>
#include <mutex>

#include "marlune/platform/platform.h"
#include "marlune/platform/standard_error_log.h"
#include "marlune/util/log_date_formatter.h"
#include "marlune/util/log_file.h"

namespace marlune {

namespace {

constexpr std::string_view kExportedKeys[] = {
    ZKPlistErrorDefault,          ZKPlistNotificationDefault,      ZKSnOMilestoneDefault,
    ZKSnODetailDefault,           ZKSpeakWordsNotificationDefault, TQUtilsPacketTraceDefault,
    TQUtilsBluetoothTraceDefault, TQUtilsApplicationTraceDefault};
constexpr std::size_t kExportedKeyCount = std::size(kExportedKeys);

// The place of `key` among the exported ones, their number for any other. They all differ in
// length, so this compares one text at most.
std::size_t exportedKeyIndex(std::string_view key) {
  std::size_t index = 0;
  while (index < kExportedKeyCount && kExportedKeys[index] != key) ++index;
  return index;
}

// What is known of each exported key: the preferences' change count when it was looked up, times
// two, plus one if it was on. 0 is nothing known, since change counts begin with 1. In one number,
// so that a thread never sees half of another's answer.
using Decisions = std::array<std::atomic<std::uint64_t>, kExportedKeyCount>;

// The settings of the process. They are meant to be made early, from one thread; the lock makes
// one that comes late harmless too. It is never held while a line is written.
struct LogSettings {
  std::atomic<bool> usesPartnerPreferences{false};
  Decisions ownDecisions{};
  Decisions partnerDecisions{};

  std::mutex mutex;
  std::shared_ptr<const std::string> directory;
  std::shared_ptr<LogFile> file;
};

// Never destroyed: objects that die at the process's end may still log.
LogSettings& settings() {
  static LogSettings* const shared = new LogSettings;
  return *shared;
}

thread_local int silences = 0;  // of this thread, that live

SystemLog& systemLogInUse() {
  static StandardErrorLog* const standardError = new StandardErrorLog;
  SystemLog* const log = Platform::shared().systemLog.get();
  return log ? *log : *standardError;
}

std::string pathInDirectory(const std::string& directory, const std::string& name) {
  const bool needsSlash = !directory.empty() && directory.back() != '/';
  return directory + (needsSlash ? "/" : "") + name;
}

// The open log file, while a log directory is set.
std::shared_ptr<LogFile> fileToLogTo() {
  LogSettings& all = settings();
  const std::lock_guard lock(all.mutex);
  return all.directory ? all.file : nullptr;
}

}  // namespace

TQUtils::Silence::Silence() { ++silences; }
TQUtils::Silence::~Silence() { --silences; }

bool TQUtils::isWantedForDefault(std::string_view key) {
  const Preferences* const preferences = Platform::shared().preferences.get();
  if (!preferences) return false;
  LogSettings& all = settings();
  const bool partner = all.usesPartnerPreferences.load(std::memory_order_relaxed);
  const std::size_t index = exportedKeyIndex(key);
  if (index == kExportedKeyCount) return _lookUpDefault(key, partner);

  auto& decision = (partner ? all.partnerDecisions : all.ownDecisions)[index];
  const std::uint64_t count = preferences->changeCount();
  const std::uint64_t known = decision.load(std::memory_order_relaxed);
  if (known >> 1 == count) return (known & 1) != 0;
  const bool wanted = _lookUpDefault(key, partner);
  decision.store(count << 1 | (wanted ? 1 : 0), std::memory_order_relaxed);
  return wanted;
}

void TQUtils::_log(std::string_view format, std::initializer_list<FormatArgument> arguments) {
  _write("ERROR", format, arguments);
}

void TQUtils::_systemLog(std::string_view format,
                         std::initializer_list<FormatArgument> arguments) noexcept try {
  if (silences > 0) return;
  systemLogInUse().write(formatted(format, arguments));
} catch (const std::exception&) {
  // A line that cannot be made is lost, as one that cannot be written.
}

void TQUtils::_write(std::string_view type, std::string_view format,
                     std::initializer_list<FormatArgument> arguments) noexcept try {
  if (silences > 0) return;
  const std::string message = formatted(format, arguments);
  systemLogInUse().write(message);
  __logToFileForMessageType(type, message);
} catch (const std::exception&) {
  // As above.
}

void TQUtils::__logToFileForMessageType(std::string_view type, std::string_view message) {
  const std::shared_ptr<LogFile> file = fileToLogTo();
  if (!file) return;
  const std::string stamp = __dateStringForDate(std::chrono::system_clock::now());
  file->write(formatted("%@ %@ %@\n", {stamp, type, message}));
}

void TQUtils::setShouldLogToFilesInDirectory(std::shared_ptr<const std::string> directory) {
  LogSettings& all = settings();
  const bool startsFile = directory != nullptr;
  {
    const std::lock_guard lock(all.mutex);
    if (directory == all.directory) return;
    all.directory.swap(directory);
  }
  if (startsFile) resetLogs();
}

void TQUtils::setShouldUseVexaAppPreferenceKeyForLogging(bool flag) {
  settings().usesPartnerPreferences.store(flag, std::memory_order_relaxed);
}

void TQUtils::resetLogs() {
  LogSettings& all = settings();
  std::shared_ptr<LogFile> former;
  std::shared_ptr<const std::string> directory;
  {
    const std::lock_guard lock(all.mutex);
    former.swap(all.file);
    directory = all.directory;
  }
  if (former) former->flush();
  if (!directory) return;

  const std::string stamp = __dateStringForDate(std::chrono::system_clock::now());
  const std::string path = pathInDirectory(*directory, formatted("%@_Oskavel.log", {stamp}));
  std::shared_ptr<LogFile> file = LogFile::openAtPath(path);
  if (!file) systemLog("Unable to create log file at [%@]", path);
  const std::lock_guard lock(all.mutex);
  all.file.swap(file);
}

std::string TQUtils::__dateStringForDate(std::chrono::system_clock::time_point date) {
  return LogDateFormatter::shared().stringForDate(date);
}

}  // namespace marlune
