#include "marlune/grammar/file/similar_names.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace marlune {

namespace {

constexpr std::size_t kLongestName = 64;  // in bytes; longer ones are not compared
constexpr std::size_t kMostNames = 3;

// The number of bytes to be inserted, removed or replaced to make one text from the other
// (Levenshtein's distance, row by row).
std::size_t distanceBetween(std::string_view one, std::string_view other) {
  std::vector<std::size_t> row(other.size() + 1);
  for (std::size_t i = 0; i < row.size(); ++i) row[i] = i;
  for (std::size_t i = 0; i < one.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i + 1);
    for (std::size_t j = 0; j < other.size(); ++j) {
      const std::size_t replaced = diagonal + (one[i] == other[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
    }
  }
  return row.back();
}

// A third of the letters may differ, and always two, so that "Mian" leads to "Main".
std::size_t mostDifference(std::string_view name) {
  return std::max(std::size_t{2}, name.size() / 3);
}

}  // namespace

std::vector<std::string> similarNames(std::string_view name, const Value& tree) {
  std::string before;
  Value place = tree;
  for (std::size_t dot = name.find('.'); dot != std::string_view::npos; dot = name.find('.')) {
    const auto dictionary = place.asDictionary();
    Value next = dictionary ? dictionary->valueForKey(name.substr(0, dot)) : Value();
    if (!next.asDictionary()) break;
    place = std::move(next);
    before += name.substr(0, dot + 1);
    name.remove_prefix(dot + 1);
  }
  std::vector<std::pair<std::size_t, std::string>> found;
  const auto dictionary = place.asDictionary();
  if (!dictionary || name.size() > kLongestName) return {};
  for (const auto& [key, value] : dictionary->entries()) {
    if (!value.asDictionary() || key->size() > kLongestName || key->starts_with('_')) continue;
    const std::size_t distance = distanceBetween(name, *key);
    if (distance <= mostDifference(name) && distance < key->size()) {
      found.emplace_back(distance, before + *key);
    }
  }
  std::sort(found.begin(), found.end());
  std::vector<std::string> names;
  for (auto& [distance, each] : found) {
    if (names.size() < kMostNames) names.push_back(std::move(each));
  }
  return names;
}

}  // namespace marlune
