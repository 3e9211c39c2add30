#include "marlune/grammar/model/phrase_digest.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "marlune/grammar/model/cell.h"

namespace marlune {

namespace {

constexpr std::uint64_t kSeeds[] = {0x9E3779B97F4A7C15, 0xD1B54A32D192ED03};

std::uint64_t mixed(std::uint64_t bits) {
  bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9;
  bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EB;
  return bits ^ (bits >> 31);
}

std::uint64_t digestOfText(std::string_view text, std::uint64_t seed) {
  std::uint64_t digest = mixed(seed + text.size());
  for (; !text.empty(); text.remove_prefix(std::min(text.size(), sizeof digest))) {
    std::uint64_t part = 0;
    std::memcpy(&part, text.data(), std::min(text.size(), sizeof part));
    digest = mixed(digest ^ part) + seed;
  }
  return digest;
}

std::uint64_t digestOfValue(const AttributeValue& value, std::uint64_t seed) {
  if (value.asString()) return digestOfText(*value.asString(), seed);
  const Value* other = value.asOtherValue();
  return digestOfText(value.text(), seed ^ digestOfText(other ? other->kindName() : "key", seed));
}

std::uint64_t digestOfCell(const Cell* cell, std::uint64_t seed) {
  if (!cell) return seed;
  std::uint64_t digest = mixed(seed + 1 + cell->type());
  if (!cell->attributes()) return digest;
  for (const auto& [name, value] : cell->attributes()->entries()) {
    digest += mixed(digestOfText(*name, seed) ^ mixed(digestOfValue(value, seed)));
  }
  return digest;
}

std::uint64_t digestOfSlots(const SlotArray& slots, std::uint64_t seed) {
  std::uint64_t digest = seed;
  for (const std::shared_ptr<Slot>& slot : slots) {
    digest = mixed(digest ^ digestOfCell(slot->_cellOrNull().get(), seed)) + seed;
  }
  return digest;
}

}  // namespace

PhraseDigest PhraseDigest::of(const SimpleSlotSequence& phrase) {
  return {digestOfSlots(phrase.slots(), kSeeds[0]), digestOfSlots(phrase.slots(), kSeeds[1])};
}

}  // namespace marlune
