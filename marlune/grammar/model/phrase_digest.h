#ifndef MARLUNE_GRAMMAR_MODEL_PHRASE_DIGEST_H_
#define MARLUNE_GRAMMAR_MODEL_PHRASE_DIGEST_H_

#include <cstddef>
#include <cstdint>

#include "marlune/grammar/model/simple_slot_sequence.h"

namespace marlune {

// A phrase in 128 bits: the types and attributes of its cells in order; the order of a cell's
// attributes does not matter. Equal phrases have equal digests; different phrases practically never
// do.
struct PhraseDigest {
  static PhraseDigest of(const SimpleSlotSequence& phrase);

  bool operator==(const PhraseDigest&) const = default;

  struct Hash {
    std::size_t operator()(const PhraseDigest& digest) const {
      return static_cast<std::size_t>(digest.first);
    }
  };

  std::uint64_t first = 0;
  std::uint64_t second = 0;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_PHRASE_DIGEST_H_
