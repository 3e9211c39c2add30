#ifndef MARLUNE_PLATFORM_PROPERTY_LIST_READER_H_
#define MARLUNE_PLATFORM_PROPERTY_LIST_READER_H_

#include <string>

#include "marlune/platform/failure.h"
#include "marlune/platform/value.h"
#include "marlune/platform/visibility.h"

namespace marlune {

// Reads a property-list file into values. Every container is mutable and has exactly one holder: an
// object that the file shares (two references in a binary list) is returned as two copies.
//
// Threads: any, at any time.
class MARLUNE_API PropertyListReader {
 public:
  virtual ~PropertyListReader() = default;

  // Reads the whole file at `path`. A value that is read is not absent. The message of a failure
  // has the cause and the place in the file, without a line feed. Never throws, whatever the file
  // contains or is.
  virtual Result<Value> readFile(const std::string& path) const noexcept = 0;
};

}  // namespace marlune

#endif  // MARLUNE_PLATFORM_PROPERTY_LIST_READER_H_
