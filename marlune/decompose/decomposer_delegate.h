#ifndef MARLUNE_DECOMPOSE_DECOMPOSER_DELEGATE_H_
#define MARLUNE_DECOMPOSE_DECOMPOSER_DELEGATE_H_

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "marlune/decompose/decomposer_overrides.h"
#include "marlune/platform/visibility.h"

namespace marlune {

// Answers from two fixed tables: one for whole phrases, one for parts of phrases. Neither table is
// used for the other kind, and the files are not checked for existence.
//
// Threads: any, at any time; the tables never change.
class MARLUNE_API DecomposerDelegate : public DecomposerOverrides {
 public:
  // Maps a decomposition key (the words joined with "_", "_[" replaced by "[") to file names
  // without extension.
  using Overrides = std::map<std::string, std::vector<std::string>, std::less<>>;

  // Copies both tables. An empty table answers nothing.
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
