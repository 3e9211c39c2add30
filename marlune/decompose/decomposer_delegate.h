#ifndef MARLUNE_DECOMPOSE_DECOMPOSER_DELEGATE_H_
#define MARLUNE_DECOMPOSE_DECOMPOSER_DELEGATE_H_

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "marlune/decompose/decomposer_overrides.h"

namespace marlune {

// Dictates from two fixed tables how phrases are said: one for whole phrases, one for parts of
// phrases. A table never answers for the other, and no file is checked for existence.
//
// Threads: any, at any time; the tables never change.
class DecomposerDelegate : public DecomposerOverrides {
 public:
  // From decomposition key (the words joined with "_", "_[" collapsed to "[") to file names
  // without extension.
  using Overrides = std::map<std::string, std::vector<std::string>, std::less<>>;

  // Both tables are copied; an empty one answers nothing.
  static std::shared_ptr<DecomposerDelegate> initWithWholeOverrides(const Overrides& wholeOverrides,
                                                                    const Overrides& partOverrides);

  Decomposition decompositionOf(Decomposer& decomposer, std::string_view key,
                                bool isSubsetOfWhole) override;

 private:
  using Table = std::map<std::string, Decomposition, std::less<>>;

  DecomposerDelegate(const Overrides& wholeOverrides, const Overrides& partOverrides);

  Table _overridesForWhole;
  Table _overridesForParts;
};

}  // namespace marlune

#endif  // MARLUNE_DECOMPOSE_DECOMPOSER_DELEGATE_H_
