#ifndef MARLUNE_DESKTOP_SERVICES_PREFERENCES_FILE_H_
#define MARLUNE_DESKTOP_SERVICES_PREFERENCES_FILE_H_

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "marlune/platform/value.h"

namespace marlune {

// One domain of preferences on the disk: the property list "<domain>.plist" in a folder, with a
// dictionary at its root. Processes take turns in changing it, through a lock file beside it; who
// reads without the lock sees the file before a change or after it, never in between.
class PreferencesFile {
 public:
  PreferencesFile(std::string folder, std::string_view domain);

  // The file as it stands. A file that is not there reads as an empty dictionary. nullptr when it
  // cannot be read, or, `isDamaged`, could be read and is no list of preferences.
  struct Content {
    std::shared_ptr<Dictionary> values;
    bool isDamaged = false;
    std::string problem;  // then why: a sentence
  };
  Content read() const;

  // Reads the file, lets `change` alter it, and puts it in the file's place. A damaged file is
  // first kept beside it, as "<domain>.plist.damaged-<n>", with a sentence in `lines`; `lastKnown`
  // stands in for it. Answers what the file holds now. Throws std::runtime_error when the file
  // could not be changed; then it is as it was.
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
