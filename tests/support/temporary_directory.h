#ifndef MARLUNE_TESTS_SUPPORT_TEMPORARY_DIRECTORY_H_
#define MARLUNE_TESTS_SUPPORT_TEMPORARY_DIRECTORY_H_

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace marlune {

// A new, empty directory, deleted with its contents at the end.
class TemporaryDirectory {
 public:
  TemporaryDirectory() {
    std::string pattern = (std::filesystem::temp_directory_path() / "marlune.XXXXXX").string();
    _path = ::mkdtemp(pattern.data()) ? pattern : "/directory that could not be made";
  }
  ~TemporaryDirectory() {
    std::error_code error;
    std::filesystem::remove_all(_path, error);
  }
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

  const std::string& path() const { return _path; }
  std::string path(const std::string& name) const { return _path + "/" + name; }

  // Creates or replaces the file `name`; returns its path.
  std::string write(const std::string& name, const std::string& content) const {
    std::ofstream(path(name), std::ios::binary) << content;
    return path(name);
  }

  static std::string contentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  // The contents of all its files, in no particular order.
  std::vector<std::string> contents() const {
    std::vector<std::string> all;
    for (const auto& entry : std::filesystem::directory_iterator(_path)) {
      all.push_back(contentOf(entry.path()));
    }
    return all;
  }

 private:
  std::string _path;
};

}  // namespace marlune

#endif  // MARLUNE_TESTS_SUPPORT_TEMPORARY_DIRECTORY_H_
