#include "marlune/desktop/services/preferences_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <utility>

#include "marlune/desktop/plist/property_list_error.h"
#include "marlune/desktop/plist/property_list_file.h"
#include "marlune/desktop/plist/regular_file.h"
#include "marlune/desktop/plist/xml_list_writer.h"
#include "marlune/platform/open_file.h"
#include "marlune/platform/quiet_write.h"

namespace marlune {

namespace {

namespace fs = std::filesystem;
using std::chrono::steady_clock;

// A change takes milliseconds. If a process holds the lock longer, it hangs; do not hang with it.
constexpr std::chrono::seconds kLockPatience{2};
constexpr std::chrono::milliseconds kLockPause{5};

[[noreturn]] void fail(std::string_view doing, const std::string& path) {
  throw std::system_error(errno, std::generic_category(),
                          "cannot " + std::string(doing) + ' ' + path);
}

FileDescriptor opened(const std::string& path, int flags, mode_t mode = 0) {
  FileDescriptor file(openFile(path.c_str(), flags | O_NONBLOCK, mode));
  if (!file.isOpen()) fail("open", path);
  return file;
}

// Closing the descriptor releases the lock. The lock file is not deleted: otherwise two processes
// could each lock a different file of that name.
void lock(const FileDescriptor& file, const std::string& path) {
  const auto end = steady_clock::now() + kLockPatience;
  while (::flock(file.number(), LOCK_EX | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK && errno != EINTR) fail("lock", path);
    if (steady_clock::now() >= end) {
      throw std::runtime_error("cannot lock " + path + ": another process holds it");
    }
    std::this_thread::sleep_for(kLockPause);
  }
}

// The file that `path` refers to, with symbolic links resolved.
std::string resolved(const std::string& path) {
  std::error_code error;
  const fs::path target = fs::canonical(path, error);
  return error ? path : target.string();
}

void writeWhole(const std::string& path, std::string_view bytes, mode_t mode) {
  const FileDescriptor file = opened(path, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW, mode);
  if (::fchmod(file.number(), mode) != 0) fail("write", path);
  while (!bytes.empty()) {
    const ssize_t written = quietWrite(file.number(), bytes);
    if (written <= 0) fail("write", path);
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  if (::fsync(file.number()) != 0) fail("write", path);
}

// Makes the rename itself survive a power cut. Ignores failure: some file systems cannot do it, and
// nothing is lost then.
void syncFolderOf(const std::string& path) {
  const std::string folder = fs::path(path).parent_path();
  ::fsync(opened(folder, O_RDONLY | O_DIRECTORY).number());
}

bool exists(const std::string& path) {
  struct stat status;
  return ::stat(path.c_str(), &status) == 0 || errno != ENOENT;
}

}  // namespace

PreferencesFile::PreferencesFile(std::string folder, std::string_view domain)
    : _folder(std::move(folder)),
      _path(_folder + '/' + std::string(domain) + ".plist"),
      _lockPath(_folder + "/." + std::string(domain) + ".lock") {}

PreferencesFile::Content PreferencesFile::read() const {
  if (!exists(_path)) return {std::make_shared<Dictionary>(), false, ""};
  std::string bytes;
  try {
    bytes = contentOfRegularFile(_path);
  } catch (const PropertyListError& error) {
    return {nullptr, false, "cannot read " + _path + ": " + error.message};
  }
  const auto read = PropertyListFile().readBytes(bytes, _path);
  if (!read.succeeded()) return {nullptr, true, read.failure().message};
  const Value& root = read.value();
  if (root.asDictionary()) return {root.asDictionary(), false, ""};
  return {nullptr, true,
          _path + ": expected a dictionary, found a " + std::string(root.kindName())};
}

std::shared_ptr<Dictionary> PreferencesFile::update(const std::function<void(Dictionary&)>& change,
                                                    const Dictionary& lastKnown,
                                                    std::vector<std::string>& lines) const {
  fs::create_directories(_folder);
  const FileDescriptor lockFile = opened(_lockPath, O_RDWR | O_CREAT | O_NOFOLLOW, 0600);
  lock(lockFile, _lockPath);
  Content content = read();
  if (!content.values) {
    if (!content.isDamaged) throw std::runtime_error(content.problem);
    lines.push_back(content.problem + " (kept as " + _keepAside() + ')');
    content.values = lastKnown.oneLevelCopy();
  }
  change(*content.values);
  _replace(*content.values);
  return content.values;
}

// Hard-links the file to a second name, so that replacing it does not delete it. Returns that name.
std::string PreferencesFile::_keepAside() const {
  constexpr int kMostNames = 1000;
  for (int n = 1; n <= kMostNames; ++n) {
    std::string name = _path + ".damaged-" + std::to_string(n);
    if (::link(_path.c_str(), name.c_str()) == 0) return name;
    if (errno != EEXIST) break;
  }
  fail("keep a copy of", _path);
}

void PreferencesFile::_replace(const Dictionary& values) const {
  const std::optional<std::string> xml =
      writePropertyListXml(Value::dictionary(values.oneLevelCopy()));
  if (!xml) throw std::runtime_error("cannot write " + _path + ": it would nest too deeply");
  const std::string target = resolved(_path);
  const fs::path targetPath(target);
  const std::string draft =
      targetPath.parent_path() / ('.' + targetPath.filename().string() + ".new");
  struct stat former;
  const mode_t mode = ::stat(target.c_str(), &former) == 0 ? former.st_mode & 0777 : 0600;
  try {
    writeWhole(draft, *xml, mode);
    if (::rename(draft.c_str(), target.c_str()) != 0) fail("replace", target);
  } catch (...) {
    ::unlink(draft.c_str());
    throw;
  }
  syncFolderOf(target);
}

}  // namespace marlune
