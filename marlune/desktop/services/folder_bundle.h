#ifndef MARLUNE_DESKTOP_SERVICES_FOLDER_BUNDLE_H_
#define MARLUNE_DESKTOP_SERVICES_FOLDER_BUNDLE_H_

#include <string>

#include "marlune/platform/resource_bundle.h"

namespace marlune {

// A folder as a resource bundle: its resources are the regular files (or links to such) in it and
// in its sub-folders. Reads the folder anew at every call; keeps nothing open.
//
// A name may be on the disk in any of Unicode's equivalent forms, as other systems write them: it
// is reported in normal form C, once, and found by each of its forms.
//
// Threads: any, at any time.
class FolderBundle : public ResourceBundle {
 public:
  explicit FolderBundle(std::string folder) : _folder(std::move(folder)) {}

  // Sorted by name, byte by byte. Where a name on the disk is in another form than C, the path
  // names no file: pathForResource gives the one to open.
  std::vector<std::string> pathsForResourcesOfType(std::string_view type,
                                                   std::string_view directory) const override;

  // The file of exactly this name, or else one of an equivalent name.
  // A name that would leave the directory (one with a "/") names no resource.
  std::optional<std::string> pathForResource(std::string_view name, std::string_view type,
                                             std::string_view directory) const override;

 private:
  std::string _pathOfDirectory(std::string_view directory) const;
  static std::optional<std::string> _pathOfEquivalent(const std::string& folder,
                                                      std::string_view file);

  std::string _folder;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_SERVICES_FOLDER_BUNDLE_H_
