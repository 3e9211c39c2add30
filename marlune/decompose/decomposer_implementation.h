#ifndef MARLUNE_DECOMPOSE_DECOMPOSER_IMPLEMENTATION_H_
#define MARLUNE_DECOMPOSE_DECOMPOSER_IMPLEMENTATION_H_

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "marlune/decompose/call_count.h"
#include "marlune/decompose/decomposer.h"
#include "marlune/decompose/decomposition_memo.h"
#include "marlune/decompose/joined_key.h"
#include "marlune/decompose/phrase_memo.h"
#include "marlune/decompose/split_search.h"

namespace marlune {

// What a Decomposer consists of. Internal: not installed.
class Decomposer::Implementation {
 public:
  // `decomposer` owns this object and is passed to its delegate.
  Implementation(Decomposer& decomposer, std::string_view directory,
                 std::shared_ptr<const ResourceBundle> bundle);

  static Implementation& of(const Decomposer& decomposer) { return *decomposer._implementation; }

  // See Decomposer.
  Decomposition optimalDecompositionOf(const std::vector<std::string>& words, bool isSubsetOfWhole);
  std::optional<std::vector<std::size_t>> uncoveredWordsOf(std::span<const std::string> words);
  std::vector<std::string> namesWithoutRecording(std::span<const std::string> files) const;
  std::shared_ptr<DecomposerOverrides> delegate() const { return _delegate.lock(); }
  void setDelegate(std::weak_ptr<DecomposerOverrides> delegate) { _delegate = std::move(delegate); }
  const std::vector<std::string>& availableSoundFiles() const { return _availableSoundFiles; }

  // The number of worker calls so far, as the plain recursion over all splits would make them.
  // Wraps around.
  std::int32_t iterations() const { return _calls.count(); }

  // If true, every counted call logs a line.
  void _setDebugging(bool debugging) { _calls.setTraced(debugging); }

  // A copy of all remembered answers; null values are failures.
  std::map<std::string, Decomposition> _cache() const;

 private:
  void _readRecordings(std::string_view directory);
  void _forgetSuperseded();
  Decomposition _refuse(std::size_t words);
  std::uint32_t _search(std::span<const std::string> words, bool isSubsetOfWhole);

  Decomposer& _decomposer;
  std::vector<std::string> _availableSoundFiles;
  std::shared_ptr<const ResourceBundle> _bundle;
  DecompositionMemo _memo;
  PhraseMemo _phrases;                       // a second-level cache, keyed by the words
  std::size_t _supersededSeen = 0;           // superseded entries already handled
  JoinedKey _key;                            // the key of the phrase being looked up
  std::unique_ptr<SplitSearch> _idleSearch;  // kept for its tables; null while in use
  std::weak_ptr<DecomposerOverrides> _delegate;
  CallCount _calls;
};

}  // namespace marlune

#endif  // MARLUNE_DECOMPOSE_DECOMPOSER_IMPLEMENTATION_H_
