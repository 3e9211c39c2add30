#include "marlune/desktop/services/file_preferences.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <utility>

#include "marlune/desktop/plist/xml_list_writer.h"
#include "marlune/util/tq_utils.h"

namespace marlune {

namespace {

constexpr std::size_t kLongestDomain = 200;  // file names are limited to 255 bytes

bool canBeFileName(std::string_view domain) {
  return !domain.empty() && domain.size() <= kLongestDomain && domain.front() != '.' &&
         domain.find('/') == std::string_view::npos &&
         domain.find('\0') == std::string_view::npos && domain.find("..") == std::string_view::npos;
}

// REQUIRES: `value` does not contain itself.
Value deepCopyOf(const Value& value) {
  if (const auto& dictionary = value.asDictionary()) {
    auto copy = std::make_shared<Dictionary>();
    for (const auto& [key, each] : dictionary->entries())
      copy->setValueForKey(deepCopyOf(each), key);
    return Value::dictionary(std::move(copy));
  }
  if (const auto& array = value.asArray()) {
    auto copy = std::make_shared<Array>();
    for (const Value& each : array->elements()) copy->elements().push_back(deepCopyOf(each));
    return Value::array(std::move(copy));
  }
  return value;
}

std::string homeFolder() {
  const char* home = std::getenv("HOME");
  if (home && *home == '/') return home;
  const passwd* user = getpwuid(getuid());
  return user && user->pw_dir && *user->pw_dir == '/' ? user->pw_dir : "";
}

}  // namespace

FilePreferences::FilePreferences(std::string folder, std::string ownDomain)
    : _folder(std::move(folder)), _ownDomain(std::move(ownDomain)) {}

FilePreferences::~FilePreferences() {
  for (const auto& [name, domain] : _domains) {
    if (!domain.changes.empty() && !_folder.empty()) synchronize(name);
  }
}

std::string FilePreferences::defaultFolder() {
  const char* config = std::getenv("XDG_CONFIG_HOME");
  if (config && *config == '/') return std::string(config) + "/marlune";
  const std::string home = homeFolder();
  return home.empty() ? "" : home + "/.config/marlune";
}

Value FilePreferences::valueForKey(std::string_view key, std::string_view domain) const {
  Lines lines;
  Value value;
  {
    const std::lock_guard lock(_mutex);
    if (const Domain* found = _domainNamed(_nameOf(domain), lines)) {
      const auto change = found->changes.find(key);
      value = deepCopyOf(change == found->changes.end() ? found->stored->valueForKey(key)
                                                        : change->second.value);
    }
  }
  _write(lines);
  return value;
}

void FilePreferences::setValueForKey(const Value& value, std::string_view key,
                                     std::string_view domain) {
  const std::string name(_nameOf(domain));
  Lines lines;
  if (!value.isAbsent() && !writePropertyListXml(value)) {
    lines.push_back("ERROR: The preference " + std::string(key) + " of " + name +
                    " cannot be stored: no property list can hold it.");
  } else {
    const std::lock_guard lock(_mutex);
    if (Domain* found = _domainNamed(name, lines)) {
      found->changes.insert_or_assign(std::string(key), Change{deepCopyOf(value), ++_turns});
      _noteChange();
    }
  }
  _write(lines);
}

bool FilePreferences::synchronize(std::string_view domain) {
  const std::string name(_nameOf(domain));
  Lines lines;
  std::shared_ptr<const Dictionary> stored;
  {
    const std::lock_guard oneAtATime(_synchronizing);
    std::unique_lock lock(_mutex);
    Domain* found = _domainNamed(name, lines);
    if (found && !_folder.empty()) {
      const Changes changes = found->changes;
      const std::shared_ptr<const Dictionary> lastKnown = found->stored;
      lock.unlock();
      stored = _storedAfter(found->file, lastKnown, changes, lines);
      lock.lock();
      if (stored) {
        found->stored = stored;
        // Changes set since then are still to be written.
        std::erase_if(found->changes, [&](const auto& each) {
          const auto written = changes.find(each.first);
          return written != changes.end() && written->second.turn == each.second.turn;
        });
        _noteChange();
      }
    }
  }
  _write(lines);
  return stored != nullptr;
}

// What the file contains after the changes; nullptr if it could not be read or changed.
std::shared_ptr<const Dictionary> FilePreferences::_storedAfter(
    const PreferencesFile& file, const std::shared_ptr<const Dictionary>& lastKnown,
    const Changes& changes, Lines& lines) const {
  if (changes.empty()) {
    PreferencesFile::Content content = file.read();
    if (!content.values) lines.push_back("ERROR: Preferences: " + content.problem);
    return content.values;
  }
  const auto change = [&](Dictionary& values) {
    for (const auto& [key, each] : changes) values.setValueForKey(deepCopyOf(each.value), key);
  };
  Lines kept;
  std::shared_ptr<const Dictionary> stored;
  try {
    stored = file.update(change, *lastKnown, kept);
  } catch (const std::exception& error) {
    kept.push_back(error.what());
  }
  for (const std::string& line : kept) lines.push_back("ERROR: Preferences: " + line);
  return stored;
}

std::string_view FilePreferences::_nameOf(std::string_view domain) const {
  return domain.empty() ? std::string_view(_ownDomain) : domain;
}

FilePreferences::Domain* FilePreferences::_domainNamed(std::string_view name, Lines& lines) const {
  const auto known = _domains.find(name);
  if (known != _domains.end()) return &known->second;
  if (!canBeFileName(name)) {
    lines.push_back("ERROR: Preferences: no file can be named for the domain \"" +
                    std::string(name) + "\"");
    return nullptr;
  }
  Domain domain{PreferencesFile(_folder, name), std::make_shared<Dictionary>(), {}};
  if (!_folder.empty()) {
    PreferencesFile::Content content = domain.file.read();
    if (content.values) domain.stored = std::move(content.values);
    if (!content.problem.empty()) lines.push_back("ERROR: Preferences: " + content.problem);
  }
  return &_domains.emplace(std::string(name), std::move(domain)).first->second;
}

// Without any lock: a system log may read a preference.
void FilePreferences::_write(const Lines& lines) {
  for (const std::string& line : lines) TQUtils::systemLog("%@", line);
}

}  // namespace marlune
