#ifndef MARLUNE_DESKTOP_PLIST_REGULAR_FILE_H_
#define MARLUNE_DESKTOP_PLIST_REGULAR_FILE_H_

#include <string>

namespace marlune {

// The bytes of the file at `path`, which must be a regular file of at most 64 MiB: a directory, a
// FIFO or a device would hang the read or fill the memory. Throws PropertyListError otherwise.
std::string contentOfRegularFile(const std::string& path);

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_PLIST_REGULAR_FILE_H_
