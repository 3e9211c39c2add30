#ifndef MARLUNE_PLATFORM_PREFERENCES_H_
#define MARLUNE_PLATFORM_PREFERENCES_H_

#include <atomic>
#include <cstdint>
#include <string_view>

#include "marlune/platform/value.h"

namespace marlune {

// Named values that outlive the process, in domains: one domain an application, named by its
// reverse-DNS identifier. The empty domain is the running application's own.
//
// Threads: any, at any time: a line of the log asks from the thread that writes it.
class Preferences {
 public:
  virtual ~Preferences() = default;

  // The value under `key`; absent when there is none or the domain cannot be read. Any thread.
  virtual Value valueForKey(std::string_view key, std::string_view domain) const = 0;

  // Stores the value; an absent value removes the key. Seen by valueForKey at once, by other
  // processes after synchronize. Other keys of the domain are kept.
  virtual void setValueForKey(const Value& value, std::string_view key,
                              std::string_view domain) = 0;

  // Writes what has changed in the domain and reads what others changed. Whether that worked.
  virtual bool synchronize(std::string_view domain) = 0;

  // A number that no Preferences of this process has shown before whenever a value of this one may
  // differ from what it was; a new object starts with a new number. Logging asks for it at every
  // trace, so that it need not look the switches up. Any thread.
  std::uint64_t changeCount() const noexcept {
    return _changeCount.load(std::memory_order_acquire);
  }

 protected:
  // An implementation calls it after every change, once valueForKey answers the new value.
  void _noteChange() noexcept {
    _changeCount.store(_freshChangeCount(), std::memory_order_release);
  }

 private:
  // From 1 up. Counting for all objects together keeps one object's numbers from being taken for
  // those of another that was put in its place.
  static std::uint64_t _freshChangeCount() noexcept;

  std::atomic<std::uint64_t> _changeCount{_freshChangeCount()};
};

}  // namespace marlune

#endif  // MARLUNE_PLATFORM_PREFERENCES_H_
