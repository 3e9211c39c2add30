// The part of TQUtils that deals with directories.

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <vector>

#include "marlune/util/tq_utils.h"

namespace marlune {

namespace {

constexpr unsigned long kLastNumberAside = 1000;

// The home directory of `user`, or of the current user when empty. Nothing when there is no such
// user.
std::optional<std::string> homeDirectory(const std::string& user) {
  const char* const home = user.empty() ? std::getenv("HOME") : nullptr;
  if (home && *home) return home;
  std::vector<char> buffer(16384);
  passwd entry{};
  passwd* found = nullptr;
  if (user.empty()) {
    ::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found);
  } else {
    ::getpwnam_r(user.c_str(), &entry, buffer.data(), buffer.size(), &found);
  }
  if (!found || !found->pw_dir) return std::nullopt;
  return found->pw_dir;
}

// `path` with a leading "~" or "~user" replaced by that home directory.
std::string withoutTilde(std::string_view path) {
  if (path.empty() || path.front() != '~') return std::string(path);
  const std::size_t end = std::min(path.find('/'), path.size());
  const auto home = homeDirectory(std::string(path.substr(1, end - 1)));
  if (!home) return std::string(path);
  return *home + std::string(path.substr(end));
}

// `path` with "~", ".", ".." and redundant separators resolved, from the text alone.
std::string standardizedPath(std::string_view path) {
  std::string standard = std::filesystem::path(withoutTilde(path)).lexically_normal().string();
  while (standard.size() > 1 && standard.back() == '/') standard.pop_back();
  return standard;
}

// Whether anything exists at `path`, including a dangling link.
bool isTaken(const std::string& path) {
  std::error_code error;
  return std::filesystem::exists(std::filesystem::symlink_status(path, error));
}

std::string freePathAside(const std::string& path) {
  unsigned long number = 0;
  std::string aside;
  do {
    aside = formatted("%@.tmp%lu", {path, number});
  } while (isTaken(aside) && number++ < kLastNumberAside);
  return aside;
}

void moveAside(const std::string& path) {
  const std::string aside = freePathAside(path);
  std::error_code error;
  if (isTaken(aside)) {
    error = std::make_error_code(std::errc::file_exists);  // never overwrite an existing file
  } else {
    std::filesystem::rename(path, aside, error);
  }
  if (!error) return;
  TQUtils::log("Unable to move file at [%@] to [%@].  error: [%@]", path, aside, error.message());
}

}  // namespace

void TQUtils::ensureDirectoryExists(std::string_view path) {
  const std::string standard = standardizedPath(path);
  std::error_code error;
  if (std::filesystem::is_directory(standard, error)) return;
  if (isTaken(standard)) moveAside(standard);
  error.clear();
  std::filesystem::create_directories(standard, error);
  if (error) log("Unable to create directory: [%@] error: [%@]", standard, error.message());
}

}  // namespace marlune
