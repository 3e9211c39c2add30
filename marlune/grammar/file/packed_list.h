#ifndef MARLUNE_GRAMMAR_FILE_PACKED_LIST_H_
#define MARLUNE_GRAMMAR_FILE_PACKED_LIST_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "marlune/grammar/base/vocabulary.h"
#include "marlune/platform/value.h"

namespace marlune {

// A property list serialised into one byte array (about a tenth of the size), unpacked on demand.
// Every text is stored once, and shared with a grammar that was compiled from the list. Immutable.
class PackedList {
 public:
  // Texts in `known`, which must not grow any more, are taken from there; it may be null. nullptr
  // when a container in the list, or `root` itself, has a holder other than the list and `root`:
  // such a holder could observe that there are two copies. REQUIRES: no cycle, few levels.
  static std::shared_ptr<const PackedList> pack(const Value& root,
                                                std::shared_ptr<const Vocabulary> known);

  // The list in new containers. A container held in several places is again a single one.
  Value unpacked() const;

 private:
  class Writer;
  class Reader;

  explicit PackedList(std::shared_ptr<const Vocabulary> known);

  std::uint64_t _addText(std::string_view text);
  std::string_view _text(std::uint64_t number) const;
  std::size_t _mostTexts() const { return 2 * std::max(_known->count(), _texts.count()); }

  // A text of _known has an odd number, one of _texts an even one: in both ways the texts that were
  // added first, which are the most frequent, take a single byte.
  std::shared_ptr<const Vocabulary> _known;
  Vocabulary _texts;  // those not in _known
  std::string _bytes;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_FILE_PACKED_LIST_H_
