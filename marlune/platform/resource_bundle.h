#ifndef MARLUNE_PLATFORM_RESOURCE_BUNDLE_H_
#define MARLUNE_PLATFORM_RESOURCE_BUNDLE_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "marlune/platform/visibility.h"

namespace marlune {

// The files that ship with an app, found by name and type. On a desktop: a folder.
//
// Threads: any, at any time.
class MARLUNE_API ResourceBundle {
 public:
  virtual ~ResourceBundle() = default;

  // The full paths of all resources whose extension is `type` (without a dot), directly in the
  // sub-directory `directory` ("" is the bundle's root). The order is the same in every call. The
  // last component of each path is the resource's name and type. The name is in Unicode's normal
  // form C (NFC), whatever form the file system uses, because the stages compare names exactly.
  // Empty when the directory does not exist.
  virtual std::vector<std::string> pathsForResourcesOfType(std::string_view type,
                                                           std::string_view directory) const = 0;

  // The full path of the resource `name`.`type` in `directory`, in a form that can be opened;
  // nothing when there is none. Finds every name that pathsForResourcesOfType reports.
  virtual std::optional<std::string> pathForResource(std::string_view name, std::string_view type,
                                                     std::string_view directory) const = 0;
};

}  // namespace marlune

#endif  // MARLUNE_PLATFORM_RESOURCE_BUNDLE_H_
