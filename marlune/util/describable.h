#ifndef MARLUNE_UTIL_DESCRIBABLE_H_
#define MARLUNE_UTIL_DESCRIBABLE_H_

#include <string>

#include "marlune/platform/visibility.h"

namespace marlune {

// An object with a printed form, which "%@" of a log format shows.
class MARLUNE_API Describable {
 public:
  virtual ~Describable() = default;
  virtual std::string description() const = 0;
};

}  // namespace marlune

#endif  // MARLUNE_UTIL_DESCRIBABLE_H_
