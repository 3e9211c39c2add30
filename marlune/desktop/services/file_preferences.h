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

// Preferences stored in files, "<folder>/<domain>.plist". A domain is read at its first use and at
// every synchronize, which merges this object's own changes into the file. A file that is not a
// list of preferences counts as empty; before it is replaced, it is kept under another name and a
// line is logged. Every other fault is logged, too.
//
// Values are copied in and out, so changing a container does not affect the stored value.
//
// Threads: any, at any time. No lock on the values is held during file access.
class FilePreferences : public Preferences {
 public:
  // The folder is created when it is first written to. With an empty folder, values live as long as
  // this object, and synchronize fails. A domain that cannot be a file name (empty, with a "/", a
  // "..", a leading "." or over 200 bytes) has no values; that includes `ownDomain`.
  FilePreferences(std::string folder, std::string ownDomain);
  ~FilePreferences() override;  // writes changes not synchronized yet

  // "$XDG_CONFIG_HOME/marlune", or ".config/marlune" in the user's home if that variable is not an
  // absolute path. Empty if there is no home either.
  static std::string defaultFolder();

  // Refuses, with a log line, a value that cannot be stored: one that nests too deeply or contains
  // itself.
  Value valueForKey(std::string_view key, std::string_view domain) const override;
  void setValueForKey(const Value& value, std::string_view key, std::string_view domain) override;
  bool synchronize(std::string_view domain) override;

 private:
  struct Change {
    Value value;  // absent: remove the key
    std::uint64_t turn;
  };
  using Changes = std::map<std::string, Change, std::less<>>;
  struct Domain {
    PreferencesFile file;
    std::shared_ptr<const Dictionary> stored;  // contents of the file; never null, never modified
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
  std::mutex _synchronizing;  // allows one synchronize at a time; locked before _mutex
  mutable std::mutex _mutex;  // guards all below
  mutable std::map<std::string, Domain, std::less<>> _domains;
  std::uint64_t _turns = 0;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_SERVICES_FILE_PREFERENCES_H_
