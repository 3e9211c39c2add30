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

// The index of `key` among the exported keys; their number for any other key. The exported keys
// differ in length, so at most one comparison reads any text.
std::size_t exportedKeyIndex(std::string_view key) {
  std::size_t index = 0;
  while (index < kExportedKeyCount && kExportedKeys[index] != key) ++index;
  return index;
}

// The cached result for each exported key: the preferences' change count at the look-up, times two,
// plus one if the key was on. 0 means nothing is cached, since change counts begin at 1. It is a
// single number, so that no thread reads half of another's result.
using Decisions = std::array<std::atomic<std::uint64_t>, kExportedKeyCount>;

// The settings of the process. They should be made early, from one thread; the lock also makes a
// later change safe. It is never held while a line is written.
struct LogSettings {
  std::atomic<bool> usesPartnerPreferences{false};
  Decisions ownDecisions{};
  Decisions partnerDecisions{};

  std::mutex mutex;
  std::shared_ptr<const std::string> directory;
  std::shared_ptr<LogFile> file;
};

// Never destroyed: objects destroyed at process exit may still log.
LogSettings& settings() {
  static LogSettings* const shared = new LogSettings;
  return *shared;
}

thread_local int silences = 0;  // Silence objects alive on this thread

SystemLog& systemLogInUse() {
  static StandardErrorLog* const standardError = new StandardErrorLog;
  SystemLog* const log = Platform::shared().systemLog.get();
  return log ? *log : *standardError;
}

std::string pathInDirectory(const std::string& directory, const std::string& name) {
  const bool needsSlash = !directory.empty() && directory.back() != '/';
  return directory + (needsSlash ? "/" : "") + name;
}

// The open log file; nullptr while no log directory is set.
std::shared_ptr<LogFile> fileToLogTo() {
  LogSettings& all = settings();
  const std::lock_guard lock(all.mutex);
  return all.directory ? all.file : nullptr;
}

}  // namespace

TQUtils::Silence::Silence() { ++silences; }
TQUtils::Silence::~Silence() { --silences; }

const TQUtils::Capture*& TQUtils::_innermostCapture() {
  thread_local const Capture* innermost = nullptr;
  return innermost;
}

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
  const Capture* const capture = _innermostCapture();
  (capture ? capture->_log : systemLogInUse()).write(formatted(format, arguments));
} catch (const std::exception&) {
  // A line that cannot be formatted is lost, like one that cannot be written.
}

void TQUtils::_write(std::string_view type, std::string_view format,
                     std::initializer_list<FormatArgument> arguments) noexcept try {
  if (silences > 0) return;
  const std::string message = formatted(format, arguments);
  if (const Capture* const capture = _innermostCapture()) return capture->_log.write(message);
  systemLogInUse().write(message);
  __logToFileForMessageType(type, message);
} catch (const std::exception&) {
  // The line is lost.
}

[[gnu::cold]] void TQUtils::__logToFileForMessageType(std::string_view type,
                                                      std::string_view message) {
  const std::shared_ptr<LogFile> file = fileToLogTo();
  if (!file) return;
  const std::string stamp = __dateStringForDate(std::chrono::system_clock::now());
  file->write(formatted("%@ %@ %@\n", {stamp, type, message}));
}

[[gnu::cold]] void TQUtils::setShouldLogToFilesInDirectory(
    std::shared_ptr<const std::string> directory) {
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

[[gnu::cold]] void TQUtils::resetLogs() {
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
