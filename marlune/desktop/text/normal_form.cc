#include "marlune/desktop/text/normal_form.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <optional>
#include <vector>

#include "marlune/desktop/text/utf8proc_library.h"

namespace marlune {

namespace {

using CodePoints = std::vector<utf8proc_int32_t>;

constexpr auto kOptions = static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_COMPOSE);

constexpr auto kFoldingOptions = static_cast<utf8proc_option_t>(kOptions | UTF8PROC_CASEFOLD);

// No file name is longer, and utf8proc's case folding takes quadratic time on a run of marks.
constexpr std::size_t kLongestFolded = 255;

// The longest canonical decomposition of one character has four code points.
constexpr std::size_t kLongestDecomposition = 8;

// Text without code points from U+0300 on is in normal form C: all of its bytes are below 0xCC.
bool isPlainlyComposed(std::string_view text) {
  return std::none_of(text.begin(), text.end(),
                      [](char c) { return static_cast<unsigned char>(c) >= 0xCC; });
}

// Every character decomposed, with its marks in the order of the text. Nothing for invalid UTF-8.
std::optional<CodePoints> decomposed(const Utf8procLibrary& library, std::string_view text) {
  CodePoints points;
  points.reserve(text.size() + 1);  // includes room for the terminator that re-encoding writes
  auto* next = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
  for (auto left = static_cast<utf8proc_ssize_t>(text.size()); left > 0;) {
    utf8proc_int32_t point = 0;
    const utf8proc_ssize_t length = library.iterate(next, left, &point);
    if (length <= 0) return std::nullopt;
    utf8proc_int32_t parts[kLongestDecomposition];
    int boundary = 0;
    const utf8proc_ssize_t count =
        library.decomposeCharacter(point, parts, kLongestDecomposition, kOptions, &boundary);
    if (count < 0) return std::nullopt;
    points.insert(points.end(), parts, parts + count);
    next += length;
    left -= length;
  }
  return points;
}

// utf8proc's own sort takes quadratic time in the length of a run of marks.
void sortMarks(const Utf8procLibrary& library, CodePoints& points) {
  const auto combiningClass = [&](utf8proc_int32_t codePoint) {
    return library.property(codePoint)->combining_class;
  };
  const auto isMark = [&](utf8proc_int32_t codePoint) { return combiningClass(codePoint) != 0; };
  for (auto begin = points.begin(); begin != points.end();) {
    begin = std::find_if(begin, points.end(), isMark);
    const auto end = std::find_if_not(begin, points.end(), isMark);
    std::stable_sort(begin, end, [&](utf8proc_int32_t left, utf8proc_int32_t right) {
      return combiningClass(left) < combiningClass(right);
    });
    begin = end;
  }
}

}  // namespace

std::string inNormalFormC(std::string_view text) {
  if (isPlainlyComposed(text)) return std::string(text);
  const Utf8procLibrary* const library = Utf8procLibrary::shared();
  std::optional<CodePoints> points = library ? decomposed(*library, text) : std::nullopt;
  if (!points) return std::string(text);
  sortMarks(*library, *points);
  const auto count = static_cast<utf8proc_ssize_t>(points->size());
  points->push_back(0);
  const utf8proc_ssize_t size = library->reencode(points->data(), count, kOptions);
  if (size < 0) return std::string(text);
  return std::string(reinterpret_cast<const char*>(points->data()), static_cast<std::size_t>(size));
}

std::string inOneCase(std::string_view text) {
  const Utf8procLibrary* const library =
      text.size() > kLongestFolded ? nullptr : Utf8procLibrary::shared();
  utf8proc_uint8_t* result = nullptr;
  const utf8proc_ssize_t size =
      library ? library->map(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                             static_cast<utf8proc_ssize_t>(text.size()), &result, kFoldingOptions)
              : -1;
  if (size < 0) return std::string(text);
  const std::unique_ptr<utf8proc_uint8_t, decltype(&std::free)> owner(result, &std::free);
  return {reinterpret_cast<const char*>(result), static_cast<std::size_t>(size)};
}

}  // namespace marlune
