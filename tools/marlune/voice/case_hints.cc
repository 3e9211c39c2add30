#include "tools/marlune/voice/case_hints.h"

#include <utf8proc.h>

#include <cstdlib>
#include <memory>
#include <unordered_set>

namespace marlune::tool {

namespace {

// No file name is longer, and case folding takes quadratic time on a run of combining marks.
constexpr std::size_t kMostBytes = 255;

// Equal for two texts that differ only by case. Returns the text itself if it is not UTF-8.
std::string folded(const std::string& text) {
  constexpr auto kOptions =
      static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_COMPOSE | UTF8PROC_CASEFOLD);
  if (text.size() > kMostBytes) return text;
  utf8proc_uint8_t* result = nullptr;
  const utf8proc_ssize_t size =
      utf8proc_map(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                   static_cast<utf8proc_ssize_t>(text.size()), &result, kOptions);
  if (size < 0) return text;
  const std::unique_ptr<utf8proc_uint8_t, decltype(&std::free)> owner(result, &std::free);
  return {reinterpret_cast<const char*>(result), static_cast<std::size_t>(size)};
}

}  // namespace

Words namesDifferingByCase(const Words& words, const Words& names) {
  std::unordered_set<std::string> wanted;
  for (const std::string& word : words) wanted.insert(folded(word));
  Words found;
  for (const std::string& name : names) {
    if (wanted.contains(folded(name))) found.push_back(name);
  }
  return found;
}

}  // namespace marlune::tool
