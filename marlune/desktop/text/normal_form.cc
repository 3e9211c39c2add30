#include "marlune/desktop/text/normal_form.h"

#include <utf8proc.h>

#include <algorithm>
#include <optional>
#include <vector>

namespace marlune {

namespace {

using CodePoints = std::vector<utf8proc_int32_t>;

constexpr auto kOptions = static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_COMPOSE);

// The longest canonical decomposition of one character has four code points.
constexpr std::size_t kLongestDecomposition = 8;

// Text without code points from U+0300 on is in normal form C: all of its bytes are below 0xCC.
bool isPlainlyComposed(std::string_view text) {
  return std::none_of(text.begin(), text.end(),
                      [](char c) { return static_cast<unsigned char>(c) >= 0xCC; });
}

utf8proc_propval_t combiningClass(utf8proc_int32_t codePoint) {
  return utf8proc_get_property(codePoint)->combining_class;
}

bool isMark(utf8proc_int32_t codePoint) { return combiningClass(codePoint) != 0; }

// Every character decomposed, with its marks in the order of the text. Nothing for invalid UTF-8.
std::optional<CodePoints> decomposed(std::string_view text) {
  CodePoints points;
  points.reserve(text.size() + 1);  // includes room for the terminator that re-encoding writes
  auto* next = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
  for (auto left = static_cast<utf8proc_ssize_t>(text.size()); left > 0;) {
    utf8proc_int32_t point = 0;
    const utf8proc_ssize_t length = utf8proc_iterate(next, left, &point);
    if (length <= 0) return std::nullopt;
    utf8proc_int32_t parts[kLongestDecomposition];
    int boundary = 0;
    const utf8proc_ssize_t count =
        utf8proc_decompose_char(point, parts, kLongestDecomposition, kOptions, &boundary);
    if (count < 0) return std::nullopt;
    points.insert(points.end(), parts, parts + count);
    next += length;
    left -= length;
  }
  return points;
}

// utf8proc's own sort takes quadratic time in the length of a run of marks.
void sortMarks(CodePoints& points) {
  for (auto begin = points.begin(); begin != points.end();) {
    begin = std::find_if(begin, points.end(), isMark);
    const auto end = std::find_if_not(begin, points.end(), isMark);
    std::stable_sort(begin, end, [](utf8proc_int32_t left, utf8proc_int32_t right) {
      return combiningClass(left) < combiningClass(right);
    });
    begin = end;
  }
}

}  // namespace

std::string inNormalFormC(std::string_view text) {
  if (isPlainlyComposed(text)) return std::string(text);
  std::optional<CodePoints> points = decomposed(text);
  if (!points) return std::string(text);
  sortMarks(*points);
  const auto count = static_cast<utf8proc_ssize_t>(points->size());
  points->push_back(0);
  const utf8proc_ssize_t size = utf8proc_reencode(points->data(), count, kOptions);
  if (size < 0) return std::string(text);
  return std::string(reinterpret_cast<const char*>(points->data()), static_cast<std::size_t>(size));
}

}  // namespace marlune
