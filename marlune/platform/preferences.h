#ifndef MARLUNE_PLATFORM_PREFERENCES_H_
#define MARLUNE_PLATFORM_PREFERENCES_H_

#include <atomic>
#include <cstdint>
#include <string_view>

#include "marlune/platform/value.h"
#include "marlune/platform/visibility.h"

namespace marlune {

// Named values that outlive the process, grouped in domains. Each application has one domain, named
// by its reverse-DNS identifier. The empty domain is the running application's own.
//
// Threads: any, at any time: every thread that writes a log line reads preferences.
class MARLUNE_API Preferences {
 public:
  virtual ~Preferences() = default;

  // The value under `key`; absent when there is none or the domain cannot be read. Any thread.
  virtual Value valueForKey(std::string_view key, std::string_view domain) const = 0;

  // Stores the value; an absent value removes the key. valueForKey returns the new value at once;
  // other processes see it after synchronize. The domain's other keys are kept.
  virtual void setValueForKey(const Value& value, std::string_view key,
                              std::string_view domain) = 0;

  // Writes the domain's changes and reads those of other processes. Returns whether that succeeded.
  virtual bool synchronize(std::string_view domain) = 0;

  // Identifies the state of the values: whenever a value may have changed, the count becomes a
  // number that no Preferences of this process has returned before. A new object starts with a new
  // number. Every trace reads the count, and looks a switch up again only when the count has
  // changed. Any thread.
  std::uint64_t changeCount() const noexcept {
    return _changeCount.load(std::memory_order_acquire);
  }

 protected:
  // Implementations call this after every change, once valueForKey returns the new value.
  void _noteChange() noexcept {
    _changeCount.store(_freshChangeCount(), std::memory_order_release);
  }

 private:
  // Starts at 1. One count for all objects: when an object replaces another, their numbers cannot
  // be confused.
  static std::uint64_t _freshChangeCount() noexcept;

  std::atomic<std::uint64_t> _changeCount{_freshChangeCount()};
};

}  // namespace marlune

#endif  // MARLUNE_PLATFORM_PREFERENCES_H_
