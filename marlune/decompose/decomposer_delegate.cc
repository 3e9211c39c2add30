#include "marlune/decompose/decomposer_delegate.h"

namespace marlune {

namespace {

// Converts the lists to shared ones once, so that answers are returned without copying.
std::map<std::string, Decomposition, std::less<>> sharedLists(
    const DecomposerDelegate::Overrides& overrides) {
  std::map<std::string, Decomposition, std::less<>> table;
  for (const auto& [key, files] : overrides) {
    table.emplace(key, std::make_shared<const std::vector<std::string>>(files));
  }
  return table;
}

}  // namespace

std::shared_ptr<DecomposerDelegate> DecomposerDelegate::initWithWholeOverrides(
    const Overrides& wholeOverrides, const Overrides& partOverrides) {
  return std::shared_ptr<DecomposerDelegate>(new DecomposerDelegate(wholeOverrides, partOverrides));
}

DecomposerDelegate::DecomposerDelegate(const Overrides& wholeOverrides,
                                       const Overrides& partOverrides)
    : _overridesForWhole(sharedLists(wholeOverrides)),
      _overridesForParts(sharedLists(partOverrides)) {}

Decomposition DecomposerDelegate::decompositionOf(Decomposer& /*decomposer*/, std::string_view key,
                                                  bool isSubsetOfWhole) {
  const Table& table = isSubsetOfWhole ? _overridesForParts : _overridesForWhole;
  const auto found = table.find(key);
  return found == table.end() ? nullptr : found->second;
}

}  // namespace marlune
