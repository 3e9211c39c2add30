#ifndef MARLUNE_TOOLS_MARLUNE_INPUT_PHRASE_LIMITS_H_
#define MARLUNE_TOOLS_MARLUNE_INPUT_PHRASE_LIMITS_H_

#include <cstddef>
#include <string_view>

// Limits on the length of a phrase, and the messages for a phrase that exceeds them.
namespace marlune::tool {

inline constexpr std::size_t kMostBytes = 16U << 20U;
inline constexpr std::size_t kMostWords = 1'000'000;

inline constexpr std::string_view kTooLong = "it is longer than 16 MiB";
inline constexpr std::string_view kTooManyWords = "it has more than 1,000,000 words";
inline constexpr std::string_view kOutOfMemory = "there is not enough memory for it";

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_INPUT_PHRASE_LIMITS_H_
