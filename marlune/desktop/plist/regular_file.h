#ifndef MARLUNE_DESKTOP_PLIST_REGULAR_FILE_H_
#define MARLUNE_DESKTOP_PLIST_REGULAR_FILE_H_

#include <string>

namespace marlune {

// The bytes of the file at `path`. Throws PropertyListError unless it is a regular file of at most
// 64 MiB: a directory, a FIFO or a device would block the read or exhaust memory.
std::string contentOfRegularFile(const std::string& path);

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_PLIST_REGULAR_FILE_H_
