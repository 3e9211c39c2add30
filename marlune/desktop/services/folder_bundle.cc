#include "marlune/desktop/services/folder_bundle.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <system_error>

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

}  // namespace

// Not through std::filesystem, which makes a path of each entry and takes it to pieces: of a folder
// with a voice in it that takes longer than the search for a phrase.
std::vector<std::string> FolderBundle::pathsForResourcesOfType(std::string_view type,
                                                               std::string_view directory) const {
  const std::string extension = "." + std::string(type);
  std::string folder = _pathOfDirectory(directory);
  std::vector<std::string> paths;
  const std::unique_ptr<DIR, int (*)(DIR*)> entries(openFolder(folder), &::closedir);
  if (!folder.ends_with('/')) folder += '/';
  while (const dirent* const entry = entries ? ::readdir(entries.get()) : nullptr) {
    const std::string_view name = entry->d_name;
    if (!name.ends_with(extension)) continue;
    std::string path = folder + entry->d_name;
    if (entry->d_type == DT_REG || isRegularFile(path)) paths.push_back(std::move(path));
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

std::optional<std::string> FolderBundle::pathForResource(std::string_view name,
                                                         std::string_view type,
                                                         std::string_view directory) const {
  if (name.find('/') != std::string_view::npos || name.find('\0') != std::string_view::npos) {
    return std::nullopt;
  }
  std::string path = _pathOfDirectory(directory);
  path += '/';
  path += name;
  path += '.';
  path += type;
  if (!isRegularFile(path)) return std::nullopt;
  return path;
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
