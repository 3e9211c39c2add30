#ifndef MARLUNE_TOOLS_MARLUNE_VOICE_VOICE_H_
#define MARLUNE_TOOLS_MARLUNE_VOICE_VOICE_H_

#include <memory>
#include <string>
#include <vector>

#include "marlune/decompose/decomposer.h"
#include "marlune/decompose/decomposer_delegate.h"
#include "marlune/desktop/services/folder_bundle.h"
#include "tools/marlune/input/phrase_input.h"

namespace marlune::tool {

// The recordings in a folder, with an optional overrides file. Finds the recordings that say a
// phrase, or the reason why there are none.
class Voice {
 public:
  // Throws InputError if the folder cannot be read or contains no recordings, or if the overrides
  // are invalid. An empty `overridesPath` means no overrides.
  Voice(const std::string& folder, const std::string& overridesPath);

  struct Answer {
    std::shared_ptr<const Words> files;  // nullptr if the phrase cannot be said
    std::string reason;                  // set if `files` is null: the words without a recording
  };
  Answer filesFor(const Words& words);

  const std::shared_ptr<const FolderBundle>& bundle() const { return _bundle; }

 private:
  std::string _reasonAgainst(const Words& words);
  std::string _caseHint(const Words& missing) const;
  bool _isCovered(const Words& words, std::size_t index);  // by a longer recording

  std::shared_ptr<const FolderBundle> _bundle;
  std::unique_ptr<Decomposer> _decomposer;
  std::shared_ptr<DecomposerDelegate> _overrides;
};

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_VOICE_VOICE_H_
