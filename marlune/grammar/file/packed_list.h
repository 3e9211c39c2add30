#ifndef MARLUNE_GRAMMAR_FILE_PACKED_LIST_H_
#define MARLUNE_GRAMMAR_FILE_PACKED_LIST_H_

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "marlune/grammar/base/vocabulary.h"
#include "marlune/platform/value.h"

namespace marlune {

// A property list in a tenth of its memory, to be made again when somebody wants it: the values one
// behind the other in one array of bytes, every text once. Never changes.
class PackedList {
 public:
  // nullptr when a container in the list, or `root` itself, has a holder outside of the list and
  // `root`: such a holder would notice that there are two. REQUIRES: no ring, few levels.
  static std::shared_ptr<const PackedList> pack(const Value& root);

  // Whether both come to the same bytes.
  bool equals(const PackedList& other) const {
    return _bytes == other._bytes && _texts.equals(other._texts);
  }

  // The list in new containers. What was one container in several places is one again.
  Value unpacked() const;

 private:
  class Writer;
  class Reader;

  PackedList() = default;

  CompiledVocabulary _texts;
  std::string _bytes;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_FILE_PACKED_LIST_H_
