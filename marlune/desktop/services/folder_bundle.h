#ifndef MARLUNE_DESKTOP_SERVICES_FOLDER_BUNDLE_H_
#define MARLUNE_DESKTOP_SERVICES_FOLDER_BUNDLE_H_

#include <string>

#include "marlune/platform/resource_bundle.h"
#include "marlune/platform/visibility.h"

namespace marlune {

// A folder as a resource bundle. Its resources are the regular files, and links to them, in the
// folder and its sub-folders. Every call reads the folder again; nothing stays open.
//
// A name on disk may have any of Unicode's equivalent forms, as other systems write them. It is
// reported once, in normal form C, and found by any of its forms.
//
// Threads: any, at any time.
class MARLUNE_API FolderBundle : public ResourceBundle {
 public:
  explicit FolderBundle(std::string folder) : _folder(std::move(folder)) {}

  // Sorted by name, byte by byte. If a name on disk is not in form C, the path does not exist;
  // pathForResource returns the one to open.
  std::vector<std::string> pathsForResourcesOfType(std::string_view type,
                                                   std::string_view directory) const override;

  // The file with exactly this name, or else one with an equivalent name. A name that would leave
  // the directory (one with a "/") is never found.
  std::optional<std::string> pathForResource(std::string_view name, std::string_view type,
                                             std::string_view directory) const override;

  // The resource in the folder itself, of this type, that is the same file as `path`, directly or
  // by a symbolic or hard link. Nothing if there is none, or no file at `path`.
  std::optional<std::string> pathOfSameFile(const std::string& path, std::string_view type) const;

 private:
  std::string _pathOfDirectory(std::string_view directory) const;
  static std::optional<std::string> _pathOfEquivalent(const std::string& folder,
                                                      std::string_view file);

  std::string _folder;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_SERVICES_FOLDER_BUNDLE_H_
