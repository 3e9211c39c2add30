#ifndef MARLUNE_TESTS_FAKES_FAKE_PREFERENCES_H_
#define MARLUNE_TESTS_FAKES_FAKE_PREFERENCES_H_

#include <map>
#include <mutex>
#include <string>

#include "marlune/platform/preferences.h"

namespace marlune {

// In-memory preferences. Nothing leaves the process; synchronizing only counts. Any thread.
class FakePreferences : public Preferences {
 public:
  // A shorthand for a test's set-up; the domain "" is the app's own.
  void set(std::string_view key, const Value& value, std::string_view domain = "") {
    setValueForKey(value, key, domain);
  }

  Value valueForKey(std::string_view key, std::string_view domain) const override {
    const std::lock_guard lock(_mutex);
    const auto found = _domains.find(domain);
    return found == _domains.end() ? Value() : found->second.valueForKey(key);
  }

  void setValueForKey(const Value& value, std::string_view key, std::string_view domain) override {
    const std::lock_guard lock(_mutex);
    _domains[std::string(domain)].setValueForKey(value, key);
    ++_unsynchronizedChanges[std::string(domain)];
    _noteChange();
  }

  bool synchronize(std::string_view domain) override {
    const std::lock_guard lock(_mutex);
    _unsynchronizedChanges[std::string(domain)] = 0;
    return true;
  }

  // The number of changes of the domain that other processes cannot see yet.
  int unsynchronizedChanges(std::string_view domain) const {
    const std::lock_guard lock(_mutex);
    const auto found = _unsynchronizedChanges.find(domain);
    return found == _unsynchronizedChanges.end() ? 0 : found->second;
  }

 private:
  mutable std::mutex _mutex;
  std::map<std::string, Dictionary, std::less<>> _domains;
  std::map<std::string, int, std::less<>> _unsynchronizedChanges;
};

}  // namespace marlune

#endif  // MARLUNE_TESTS_FAKES_FAKE_PREFERENCES_H_
