#ifndef MARLUNE_DESKTOP_PLIST_PROPERTY_LIST_LIMITS_H_
#define MARLUNE_DESKTOP_PLIST_PROPERTY_LIST_LIMITS_H_

#include <cstddef>

namespace marlune {

// The maximum nesting of dictionaries and arrays. All code that walks a list recurses per level;
// this leaves 2 KiB per level on a thread with a 512 KiB stack.
inline constexpr std::size_t kMostPropertyListLevels = 256;

// The maximum size of a file.
inline constexpr std::size_t kMostPropertyListBytes = std::size_t{64} << 20;

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_PLIST_PROPERTY_LIST_LIMITS_H_
