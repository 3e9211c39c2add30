#ifndef MARLUNE_UTIL_TEXT_HASH_H_
#define MARLUNE_UTIL_TEXT_HASH_H_

#include <cstdint>
#include <cstring>
#include <string_view>

namespace marlune {

// A hash of a text, for tables in memory only: it depends on the byte order. Eight bytes per step:
// most words take one or two.
inline std::uint32_t textHash(std::string_view text) {
  constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15;
  std::uint64_t hash = text.size() * kMultiplier;
  while (!text.empty()) {
    std::uint64_t chunk = 0;
    const std::size_t length = text.size() < 8 ? text.size() : 8;
    std::memcpy(&chunk, text.data(), length);
    hash = (hash ^ chunk) * kMultiplier;
    hash ^= hash >> 32;
    text.remove_prefix(length);
  }
  return static_cast<std::uint32_t>(hash);
}

}  // namespace marlune

#endif  // MARLUNE_UTIL_TEXT_HASH_H_
