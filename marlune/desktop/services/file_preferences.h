#ifndef MARLUNE_DESKTOP_SERVICES_FILE_PREFERENCES_H_
#define MARLUNE_DESKTOP_SERVICES_FILE_PREFERENCES_H_

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "marlune/desktop/services/preferences_file.h"
#include "marlune/platform/preferences.h"

namespace marlune {

// Preferences that are kept as files, "<folder>/<domain>.plist". A domain is read at its first
// use and at every synchronize; synchronize writes this object's own changes into what the file
// then holds. A file that is no list of preferences counts as empty; before it is replaced it is
// kept under another name, with a line in the system log. So does every other fault write a line.
//
// Values are copied in and out: what a caller does to a container is not seen by another.
//
// Threads: any, at any time; the file is never waited for while the values are locked.
class FilePreferences : public Preferences {
 public:
  // The folder is made when it is first written to. An empty folder is none: values live as long
  // as this object, and synchronize fails. An own domain that cannot be a file's name (empty, with
  // a "/", a "..", a leading "." or over 200 bytes) has no values; nor has any other such domain.
  FilePreferences(std::string folder, std::string ownDomain);
  ~FilePreferences() override;  // writes what was not synchronized yet

  // "$XDG_CONFIG_HOME/marlune", or ".config/marlune" in the user's home when that variable does
  // not name an absolute path. Empty when there is no home either.
  static std::string defaultFolder();

  // A value that no property list can hold, since it nests too deeply or in a ring, is refused
  // with a line.
  Value valueForKey(std::string_view key, std::string_view domain) const override;
  void setValueForKey(const Value& value, std::string_view key, std::string_view domain) override;
  bool synchronize(std::string_view domain) override;

 private:
  struct Change {
    Value value;  // absent: the key is removed
    std::uint64_t turn;
  };
  using Changes = std::map<std::string, Change, std::less<>>;
  struct Domain {
    PreferencesFile file;
    std::shared_ptr<const Dictionary> stored;  // what the file held; never null, never changed
    Changes changes;
  };
  using Lines = std::vector<std::string>;

  std::string_view _nameOf(std::string_view domain) const;
  Domain* _domainNamed(std::string_view name, Lines& lines) const;  // with the lock held
  std::shared_ptr<const Dictionary> _storedAfter(const PreferencesFile& file,
                                                 const std::shared_ptr<const Dictionary>& lastKnown,
                                                 const Changes& changes, Lines& lines) const;
  static void _write(const Lines& lines);

  const std::string _folder;
  const std::string _ownDomain;
  std::mutex _synchronizing;  // one synchronize at a time; taken before the next one
  mutable std::mutex _mutex;  // for all below
  mutable std::map<std::string, Domain, std::less<>> _domains;
  std::uint64_t _turns = 0;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_SERVICES_FILE_PREFERENCES_H_
