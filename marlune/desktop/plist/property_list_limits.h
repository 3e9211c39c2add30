#ifndef MARLUNE_DESKTOP_PLIST_PROPERTY_LIST_LIMITS_H_
#define MARLUNE_DESKTOP_PLIST_PROPERTY_LIST_LIMITS_H_

#include <cstddef>

namespace marlune {

// How many dictionaries and arrays may stand inside each other. Everything that walks a list
// recurs over its levels; this leaves each of them 2 KiB on a thread with a 512 KiB stack.
inline constexpr std::size_t kMostPropertyListLevels = 256;

// The longest file that is read.
inline constexpr std::size_t kMostPropertyListBytes = std::size_t{64} << 20;

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_PLIST_PROPERTY_LIST_LIMITS_H_
