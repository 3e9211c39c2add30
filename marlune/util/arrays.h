#ifndef MARLUNE_UTIL_ARRAYS_H_
#define MARLUNE_UTIL_ARRAYS_H_

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <ranges>
#include <string_view>
#include <vector>

#include "marlune/platform/value.h"
#include "marlune/platform/visibility.h"

// Small operations on arrays: vectors, spans and other contiguous ranges. Each returns a new vector
// and leaves its operands unchanged. Indices count from 0.
namespace marlune {

template <typename Array>
concept ElementsInARow =
    std::ranges::random_access_range<const Array> && std::ranges::sized_range<const Array>;

// The type of the array's elements, without const.
template <ElementsInARow Array>
using ElementOf = std::ranges::range_value_t<const Array>;

// Whether an element equals the empty string. Always false for an element that is not a string.
template <typename Element>
bool isEmptyString(const Element& element) {
  if constexpr (std::convertible_to<const Element&, std::string_view>) {
    return std::string_view(element).empty();
  } else if constexpr (std::same_as<Element, Value>) {
    return element.asString() && element.asString()->empty();
  } else {
    return false;
  }
}

// The elements, in order, without those that equal the empty string.
template <ElementsInARow Array>
std::vector<ElementOf<Array>> _withoutEmptyStrings(const Array& array) {
  std::vector<ElementOf<Array>> kept;
  std::ranges::copy_if(array, std::back_inserter(kept),
                       [](const auto& element) { return !isEmptyString(element); });
  return kept;
}

// The elements repeated `n` times; empty when n < 1.
template <ElementsInARow Array>
std::vector<ElementOf<Array>> repeatedNTimes(const Array& array, std::int32_t n) {
  std::vector<ElementOf<Array>> repeated;
  if (n < 1) return repeated;
  repeated.reserve(std::ranges::size(array) * static_cast<std::size_t>(n));
  for (; n > 0; --n) std::ranges::copy(array, std::back_inserter(repeated));
  return repeated;
}

// Whether `subArray` equals a contiguous run of the array, comparing elements with `equal`. Every
// array contains an empty one.
template <ElementsInARow Array, ElementsInARow SubArray, typename Equal = std::equal_to<>>
bool _containsSubArray(const Array& array, const SubArray& subArray, Equal equal = {}) {
  if (std::ranges::empty(subArray)) return true;
  const auto end = std::ranges::end(array);
  return std::search(std::ranges::begin(array), end, std::ranges::begin(subArray),
                     std::ranges::end(subArray), equal) != end;
}

// The elements [from, to); empty when to < from. An end beyond the array selects the whole array,
// whatever `from` is; callers rely on this.
template <ElementsInARow Array>
std::vector<ElementOf<Array>> _subsequenceFrom(const Array& array, std::size_t from,
                                               std::size_t to) {
  if (to < from) return {};
  const auto begin = std::ranges::begin(array);
  if (to > std::ranges::size(array)) return {begin, std::ranges::end(array)};
  return {begin + static_cast<std::ptrdiff_t>(from), begin + static_cast<std::ptrdiff_t>(to)};
}

template <ElementsInARow Array>
std::vector<ElementOf<Array>> _subsequenceToIndex(const Array& array, std::size_t to) {
  return _subsequenceFrom(array, 0, to);
}

template <ElementsInARow Array>
std::vector<ElementOf<Array>> _subsequenceFromIndex(const Array& array, std::size_t from) {
  return _subsequenceFrom(array, from, std::ranges::size(array));
}

// `run` with each overlay applied to the element at the same position: overlayedOn(overlay,
// element) makes the new element. Elements without an overlay are kept; surplus overlays are
// ignored.
template <ElementsInARow Array, ElementsInARow Overlays, typename OverlayedOn>
std::vector<ElementOf<Array>> _arrayWithOverlayedCells(const Array& run, const Overlays& overlays,
                                                       OverlayedOn overlayedOn) {
  std::vector<ElementOf<Array>> result = _subsequenceFromIndex(run, 0);
  const std::size_t count = std::min(result.size(), std::size_t{std::ranges::size(overlays)});
  for (std::size_t i = 0; i < count; ++i) {
    const auto at = static_cast<std::ptrdiff_t>(i);
    result[i] = overlayedOn(std::ranges::begin(overlays)[at], result[i]);
  }
  return result;
}

// The run [at, at + amount) of an array as unsigned bounds; a negative bound becomes one beyond
// every array. The sum is computed in 32 bits.
struct MARLUNE_API SplicedRun {
  SplicedRun(std::int32_t at, std::int32_t amount)
      : from(static_cast<std::size_t>(at)),
        to(static_cast<std::size_t>(static_cast<std::int32_t>(
            static_cast<std::uint32_t>(at) + static_cast<std::uint32_t>(amount)))) {}
  const std::size_t from, to;
};

// The array with the run [at, at + amount) replaced by `middle`. The parts before and after it
// follow the rules of _subsequenceFrom: if `at` is beyond the array, the head is the whole array.
template <ElementsInARow Array, ElementsInARow Middle>
std::vector<ElementOf<Array>> _spliceAtAndInsert(const Array& array, std::int32_t at,
                                                 std::int32_t amount, const Middle& middle) {
  const SplicedRun run(at, amount);
  std::vector<ElementOf<Array>> result = _subsequenceToIndex(array, run.from);
  std::ranges::copy(middle, std::back_inserter(result));
  std::ranges::copy(_subsequenceFromIndex(array, run.to), std::back_inserter(result));
  return result;
}

// The array with the overlays applied to the run [at, at + amount), as in _arrayWithOverlayedCells.
template <ElementsInARow Array, ElementsInARow Overlays, typename OverlayedOn>
std::vector<ElementOf<Array>> _spliceAtAndOverlay(const Array& array, std::int32_t at,
                                                  std::int32_t amount, const Overlays& overlays,
                                                  OverlayedOn overlayedOn) {
  const SplicedRun run(at, amount);
  const auto overlayed =
      _arrayWithOverlayedCells(_subsequenceFrom(array, run.from, run.to), overlays, overlayedOn);
  return _spliceAtAndInsert(array, at, amount, overlayed);
}

}  // namespace marlune

#endif  // MARLUNE_UTIL_ARRAYS_H_
