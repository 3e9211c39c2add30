#ifndef MARLUNE_DECOMPOSE_DECOMPOSER_H_
#define MARLUNE_DECOMPOSE_DECOMPOSER_H_

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "marlune/decompose/decomposer_overrides.h"
#include "marlune/decompose/decomposition.h"
#include "marlune/decompose/joined_key.h"
#include "marlune/decompose/phrase_memo.h"
#include "marlune/platform/resource_bundle.h"

namespace marlune {

class DecompositionMemo;
class SplitSearch;

// Answers which recordings, played one after the other, say a phrase: the fewest, and of equally
// few those with the longest leading ones. A recording of the whole stretch is better than any
// split, and what the delegate says is better than everything.
//
// A recording is named by the decomposition key of its words: these joined with "_", "_[" made
// "[". A phrase with a bracketed attribute falls back to the recording without it, a single word
// does not. Every answer, "cannot be said" included, is remembered under its key for the
// decomposer's lifetime, for parts and whole phrases alike.
//
// Words are compared byte by byte with the names that the bundle reports. Pass words in Unicode's
// normal form C (NFC), which is the form of the names that a bundle reports.
//
// A phrase of more than 2,000 words, or of so much text that the square of its words times the
// bytes of its key is more than 2^37 (128 GiB; 2,000 words of 16 bytes each are just allowed), is
// not split: remembering all its stretches would take gigabytes, or minutes. It is answered by what
// is remembered for it, the delegate, or a recording of the whole; otherwise the answer is null,
// with an unconditional line each time, and nothing is remembered.
//
// Where memory runs out, std::bad_alloc leaves to the caller: no decomposer was made, or the one at
// hand is as good as before. What it has remembered by then is right and stays; the same call may
// be made again, and goes on from there. What a delegate throws leaves in the same way.
//
// Lines go under ZKPlistNotificationDefault.
//
// Threads: any, one at a time for each decomposer; others may be used at the same time.
class Decomposer {
 public:
  // The recordings are the "aif" resources of the bundle's sub-directory `directory`, read now and
  // never again. Keeps a share of the bundle; null is a bundle without resources.
  static std::unique_ptr<Decomposer> initWithDirectory(
      std::string_view directory, std::shared_ptr<const ResourceBundle> bundle);
  ~Decomposer();
  Decomposer(const Decomposer&) = delete;
  Decomposer& operator=(const Decomposer&) = delete;

  // How to say the phrase; null when it cannot be said. A word may carry a bracketed attribute
  // ("finish[x]"). An absent phrase (null) has no answer and leaves no trace. From the second time
  // on, the same phrase gets the same list, without an allocation.
  Decomposition optimalDecompositionOf(const std::vector<std::string>& words);
  Decomposition optimalDecompositionOf(const std::vector<std::string>* words);

  // The same without the opening line. `isSubsetOfWhole` is what a delegate is told of the words:
  // whether they are a part of a phrase.
  Decomposition optimalDecompositionOf(const std::vector<std::string>& words, bool isSubsetOfWhole);

  // Asked before every search; not owned, and may be absent. A new one does not change what is
  // remembered.
  std::shared_ptr<DecomposerOverrides> delegate() const { return _delegate.lock(); }
  void setDelegate(std::weak_ptr<DecomposerOverrides> delegate) { _delegate = std::move(delegate); }

  // The recordings' names in the bundle's order, duplicates kept.
  const std::vector<std::string>& availableSoundFiles() const { return _availableSoundFiles; }

  // The worker calls so far, as the plain recursion over all splits would make them. Wraps around.
  std::int32_t iterations() const { return static_cast<std::int32_t>(_iterations); }

  // Internal: with true, every counted call writes a line.
  void _setDebugging(bool debugging) { _debugging = debugging; }

  // Internal: a copy of all that is remembered; null values are the failures.
  std::map<std::string, Decomposition> _cache() const;

 private:
  friend class SplitSearch;

  Decomposer(std::string_view directory, std::shared_ptr<const ResourceBundle> bundle);

  void _readRecordings(std::string_view directory);
  void _countCalls(std::size_t calls);
  void _forgetSuperseded();
  Decomposition _refuse(std::size_t words);
  std::uint32_t _search(std::span<const std::string> words, bool isSubsetOfWhole);

  std::vector<std::string> _availableSoundFiles;
  std::shared_ptr<const ResourceBundle> _bundle;
  std::unique_ptr<DecompositionMemo> _memo;
  PhraseMemo _phrases;                       // the memo's answers once more
  std::size_t _supersededSeen = 0;           // of the memo's, when the phrases were last right
  JoinedKey _key;                            // of the phrase being looked up
  std::unique_ptr<SplitSearch> _idleSearch;  // kept for its tables; null while it is at work
  std::weak_ptr<DecomposerOverrides> _delegate;
  std::uint32_t _iterations = 0;
  bool _debugging = false;
};

}  // namespace marlune

#endif  // MARLUNE_DECOMPOSE_DECOMPOSER_H_
