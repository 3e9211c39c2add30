#include "marlune/desktop/services/folder_bundle.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace marlune {

namespace fs = std::filesystem;

std::vector<std::string> FolderBundle::pathsForResourcesOfType(std::string_view type,
                                                               std::string_view directory) const {
  const std::string extension = "." + std::string(type);
  std::vector<std::string> paths;
  std::error_code error;
  fs::directory_iterator entry(_pathOfDirectory(directory), error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    std::error_code unreadable;
    if (name.ends_with(extension) && entry->is_regular_file(unreadable)) {
      paths.push_back(entry->path().string());
    }
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
  std::error_code error;
  if (!fs::is_regular_file(path, error)) return std::nullopt;
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
