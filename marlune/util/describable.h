#ifndef MARLUNE_UTIL_DESCRIBABLE_H_
#define MARLUNE_UTIL_DESCRIBABLE_H_

#include <string>

namespace marlune {

// An object that can be printed: what "%@" of a log format shows for it.
class Describable {
 public:
  virtual ~Describable() = default;
  virtual std::string description() const = 0;
};

}  // namespace marlune

#endif  // MARLUNE_UTIL_DESCRIBABLE_H_
