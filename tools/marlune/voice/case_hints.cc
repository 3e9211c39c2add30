#include "tools/marlune/voice/case_hints.h"

#include <unordered_set>

#include "marlune/desktop/text/normal_form.h"

namespace marlune::tool {

Words namesDifferingByCase(const Words& words, const Words& names) {
  std::unordered_set<std::string> wanted;
  for (const std::string& word : words) wanted.insert(inOneCase(word));
  Words found;
  for (const std::string& name : names) {
    if (wanted.contains(inOneCase(name))) found.push_back(name);
  }
  return found;
}

}  // namespace marlune::tool
