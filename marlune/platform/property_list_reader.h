#ifndef MARLUNE_PLATFORM_PROPERTY_LIST_READER_H_
#define MARLUNE_PLATFORM_PROPERTY_LIST_READER_H_

#include <string>
#include <string_view>

#include "marlune/platform/value.h"

namespace marlune {

// Reads a property-list file into values. Every container is mutable and has one holder only: what
// the file shares (two references to one object in a binary list) arrives as two copies.
//
// Threads: any, at any time.
class PropertyListReader {
 public:
  struct Result {
    Value root;         // absent when the file could not be read
    std::string error;  // then why, with the place in the file: a sentence without a line feed
  };

  virtual ~PropertyListReader() = default;

  // The whole file at `path`. Never throws, whatever the file holds or is.
  virtual Result readFile(const std::string& path) const noexcept = 0;
};

}  // namespace marlune

#endif  // MARLUNE_PLATFORM_PROPERTY_LIST_READER_H_
