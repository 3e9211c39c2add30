#ifndef MARLUNE_GRAMMAR_BASE_CONTENT_COMPARISON_H_
#define MARLUNE_GRAMMAR_BASE_CONTENT_COMPARISON_H_

#include <cstddef>
#include <string_view>

#include "marlune/util/utf16.h"

namespace marlune {

// What an attribute's name stands for in a cell that is used as a pattern. "#xx-" compares the
// value with the first characters of the content, "-xx#" with the last; as many characters as there
// are between the marks. Every other name is that of an attribute. A single character cannot be
// both marks.
enum class ContentComparison : unsigned char { none, prefix, suffix };

inline ContentComparison contentComparisonOf(std::string_view name) {
  if (name.starts_with('#') && name.ends_with('-')) return ContentComparison::prefix;
  if (name.starts_with('-') && name.ends_with('#')) return ContentComparison::suffix;
  return ContentComparison::none;
}

// In UTF-16 units. REQUIRES: the name stands for a comparison.
inline std::size_t comparedLength(std::string_view name) { return utf16Length(name) - 2; }

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_BASE_CONTENT_COMPARISON_H_
