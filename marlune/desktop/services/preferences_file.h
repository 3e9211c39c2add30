#ifndef MARLUNE_DESKTOP_SERVICES_PREFERENCES_FILE_H_
#define MARLUNE_DESKTOP_SERVICES_PREFERENCES_FILE_H_

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "marlune/platform/value.h"

namespace marlune {

// One domain of preferences on disk: the property list "<domain>.plist" in a folder, with a
// dictionary at its root. Processes serialise their changes with a lock file next to it. A reader
// without the lock sees the file either before or after a change.
class PreferencesFile {
 public:
  PreferencesFile(std::string folder, std::string_view domain);

  // The current contents. A missing file reads as an empty dictionary. nullptr if the file cannot
  // be read, or if it can but is not a list of preferences (`isDamaged`).
  struct Content {
    std::shared_ptr<Dictionary> values;
    bool isDamaged = false;
    std::string problem;  // set if `values` is null: a sentence
  };
  Content read() const;

  // Reads the file, applies `change` and replaces the file. A damaged file is first kept as
  // "<domain>.plist.damaged-<n>", a sentence is added to `lines`, and `lastKnown` is used instead
  // of its contents. Returns the new contents. Throws std::runtime_error, with the file unchanged,
  // if that fails.
  std::shared_ptr<Dictionary> update(const std::function<void(Dictionary&)>& change,
                                     const Dictionary& lastKnown,
                                     std::vector<std::string>& lines) const;

 private:
  std::string _keepAside() const;
  void _replace(const Dictionary& values) const;

  std::string _folder;
  std::string _path;
  std::string _lockPath;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_SERVICES_PREFERENCES_FILE_H_
