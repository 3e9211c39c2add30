#ifndef MARLUNE_PLATFORM_PREFERENCES_H_
#define MARLUNE_PLATFORM_PREFERENCES_H_

#include <cstdint>
#include <string_view>

#include "marlune/platform/value.h"

namespace marlune {

// Named values that outlive the process, in domains: one domain an application, named by its
// reverse-DNS identifier. The empty domain is the running application's own.
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

  // A number that differs whenever any value may differ from what it was. Logging asks for it at
  // every trace, so that it need not look the switches up: a plain atomic load. Any thread.
  virtual std::uint64_t changeCount() const noexcept = 0;
};

}  // namespace marlune

#endif  // MARLUNE_PLATFORM_PREFERENCES_H_
