#ifndef MARLUNE_GRAMMAR_FILE_PACKED_LIST_H_
#define MARLUNE_GRAMMAR_FILE_PACKED_LIST_H_

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "marlune/grammar/base/vocabulary.h"
#include "marlune/platform/value.h"

namespace marlune {

// A property list serialised into one byte array (about a tenth of the size), unpacked on demand.
// Every text is stored once. Immutable.
class PackedList {
 public:
  // nullptr when a container in the list, or `root` itself, has a holder other than the list and
  // `root`: such a holder could observe that there are two copies. REQUIRES: no cycle, few levels.
  static std::shared_ptr<const PackedList> pack(const Value& root);

  // Whether both have the same bytes.
  bool equals(const PackedList& other) const {
    return _bytes == other._bytes && _texts.equals(other._texts);
  }

  // The list in new containers. A container held in several places is again a single one.
  Value unpacked() const;

 private:
  class Writer;
  class Reader;

  PackedList() = default;

  Vocabulary _texts;
  std::string _bytes;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_FILE_PACKED_LIST_H_
