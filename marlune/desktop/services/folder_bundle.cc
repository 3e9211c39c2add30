#include "marlune/desktop/services/folder_bundle.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <system_error>

#include "marlune/desktop/text/normal_form.h"
#include "marlune/platform/open_file.h"

namespace marlune {

namespace {

// Or a link to one.
bool isRegularFile(const std::string& path) {
  std::error_code error;
  return std::filesystem::is_regular_file(path, error);
}

DIR* openFolder(const std::string& folder) {
  const int descriptor = openFile(folder.c_str(), O_RDONLY | O_DIRECTORY);
  DIR* const entries = descriptor < 0 ? nullptr : ::fdopendir(descriptor);
  if (!entries && descriptor >= 0) ::close(descriptor);
  return entries;
}

// Calls `visit(entry)` for each entry of the folder until a call returns false.
template <typename Visit>
void visitEntries(const std::string& folder, const Visit& visit) {
  const std::unique_ptr<DIR, int (*)(DIR*)> entries(openFolder(folder), &::closedir);
  while (const dirent* const entry = entries ? ::readdir(entries.get()) : nullptr) {
    if (!visit(*entry)) return;
  }
}

}  // namespace

// Does not use std::filesystem, which builds a path for each entry and parses it again: in a
// voice's folder that takes longer than decomposing a phrase.
std::vector<std::string> FolderBundle::pathsForResourcesOfType(std::string_view type,
                                                               std::string_view directory) const {
  const std::string extension = "." + std::string(type);
  std::string folder = _pathOfDirectory(directory);
  if (!folder.ends_with('/')) folder += '/';
  std::vector<std::string> paths;
  visitEntries(folder, [&](const dirent& entry) {
    const std::string_view name = entry.d_name;
    if (name.ends_with(extension) &&
        (entry.d_type == DT_REG || isRegularFile(folder + entry.d_name))) {
      paths.push_back(folder + inNormalFormC(name));
    }
    return true;
  });
  std::sort(paths.begin(), paths.end());
  paths.erase(std::unique(paths.begin(), paths.end()), paths.end());
  return paths;
}

std::optional<std::string> FolderBundle::pathForResource(std::string_view name,
                                                         std::string_view type,
                                                         std::string_view directory) const {
  if (name.find('/') != std::string_view::npos || name.find('\0') != std::string_view::npos) {
    return std::nullopt;
  }
  const std::string folder = _pathOfDirectory(directory) + '/';
  std::string file(name);
  file += '.';
  file += type;
  if (isRegularFile(folder + file)) return folder + file;
  return _pathOfEquivalent(folder, file);
}

// Searches the folder, because a name on disk may be in a form that is neither fully composed nor
// fully decomposed.
std::optional<std::string> FolderBundle::_pathOfEquivalent(const std::string& folder,
                                                           std::string_view file) {
  const std::string composed = inNormalFormC(file);
  std::optional<std::string> path;
  visitEntries(folder, [&](const dirent& entry) {
    if (inNormalFormC(entry.d_name) != composed) return true;
    std::string found = folder + entry.d_name;
    if (isRegularFile(found)) path = std::move(found);
    return !path;
  });
  return path;
}

// An entry that is neither a link nor named like the file can be the same only if the file has
// several hard links. Skipping the others saves a system call for each recording of a voice.
std::optional<std::string> FolderBundle::pathOfSameFile(const std::string& path,
                                                        std::string_view type) const {
  struct stat file;
  if (::stat(path.c_str(), &file) != 0) return std::nullopt;
  const std::string extension = "." + std::string(type);
  const std::string fileName = path.substr(path.rfind('/') + 1);
  std::optional<std::string> found;
  visitEntries(_folder, [&](const dirent& entry) {
    const std::string_view name = entry.d_name;
    if (!name.ends_with(extension)) return true;
    if (file.st_nlink == 1 && entry.d_type == DT_REG && name != fileName) return true;
    std::string other = _folder + '/' + entry.d_name;
    struct stat status;
    const bool isSame = ::stat(other.c_str(), &status) == 0 && status.st_dev == file.st_dev &&
                        status.st_ino == file.st_ino;
    if (isSame) found = std::move(other);
    return !isSame;
  });
  return found;
}

std::string FolderBundle::_pathOfDirectory(std::string_view directory) const {
  std::string path = _folder;
  if (!directory.empty()) {
    path += '/';
    path += directory;
  }
  return path;
}

}  // namespace marlune
