#ifndef MARLUNE_TESTING_FAKE_RESOURCE_BUNDLE_H_
#define MARLUNE_TESTING_FAKE_RESOURCE_BUNDLE_H_

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "marlune/platform/resource_bundle.h"

namespace marlune {

// A bundle with one directory, "Sounds", that contains ".aif" recordings of the given names.
class FakeResourceBundle : public ResourceBundle {
 public:
  explicit FakeResourceBundle(std::vector<std::string> names) : _names(std::move(names)) {}

  void add(std::string name) { _names.push_back(std::move(name)); }

  std::vector<std::string> pathsForResourcesOfType(std::string_view type,
                                                   std::string_view directory) const override {
    std::vector<std::string> paths;
    if (type != "aif" || directory != "Sounds") return paths;
    for (const std::string& name : _names) paths.push_back(_pathOf(name));
    return paths;
  }

  std::optional<std::string> pathForResource(std::string_view name, std::string_view type,
                                             std::string_view directory) const override {
    if (type != "aif" || directory != "Sounds") return std::nullopt;
    for (const std::string& each : _names) {
      if (each == name) return _pathOf(each);
    }
    return std::nullopt;
  }

 private:
  static std::string _pathOf(const std::string& name) { return "/bundle/Sounds/" + name + ".aif"; }

  std::vector<std::string> _names;
};

}  // namespace marlune

#endif  // MARLUNE_TESTING_FAKE_RESOURCE_BUNDLE_H_
