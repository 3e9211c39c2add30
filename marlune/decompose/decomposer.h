#ifndef MARLUNE_DECOMPOSE_DECOMPOSER_H_
#define MARLUNE_DECOMPOSE_DECOMPOSER_H_

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "marlune/decompose/decomposer_overrides.h"
#include "marlune/decompose/decomposition.h"
#include "marlune/platform/resource_bundle.h"
#include "marlune/platform/visibility.h"

namespace marlune {

// Finds the recordings that say a phrase when played one after the other: the fewest, and among
// equally few those with the longest leading recordings. A single recording of a stretch is better
// than any split, and the delegate's answer takes precedence over everything.
//
// A recording is named by the decomposition key of its words: the words joined with "_", then "_["
// replaced by "[". A phrase with a bracketed attribute falls back to the recording without it; a
// single word does not. Every answer, including "cannot be said", is remembered under its key for
// the decomposer's lifetime, for whole phrases and their parts alike.
//
// Words are compared byte by byte with the names that the bundle reports. Pass words in Unicode's
// normal form C (NFC), which is the form of the names that a bundle reports.
//
// A phrase is not split if it has more than 2,000 words, or if the square of its words times the
// bytes of its key exceeds 2^37 (128 GiB; 2,000 words of 16 bytes each are just allowed):
// remembering all its stretches would take gigabytes, or minutes. Such a phrase is answered by a
// remembered answer, the delegate, or a recording of the whole. Otherwise the answer is null, an
// unconditional line is logged each time, and nothing is remembered.
//
// If memory runs out, std::bad_alloc reaches the caller. The decomposer either was not created or
// is still usable: the answers remembered so far are correct and kept, and a repeated call
// continues from them. Exceptions from a delegate reach the caller in the same way.
//
// Lines are logged under ZKPlistNotificationDefault.
//
// Threads: any; each decomposer is used by one thread at a time. Different decomposers may be used
// at the same time.
class MARLUNE_API Decomposer {
 public:
  // The recordings are the "aif" resources in the bundle's sub-directory `directory`. They are read
  // now and never again. Shares ownership of the bundle; a null bundle has no resources.
  static std::unique_ptr<Decomposer> initWithDirectory(
      std::string_view directory, std::shared_ptr<const ResourceBundle> bundle);
  ~Decomposer();
  Decomposer(const Decomposer&) = delete;
  Decomposer& operator=(const Decomposer&) = delete;

  // The recordings that say the phrase; null when it cannot be said. A word may have a bracketed
  // attribute ("finish[x]"). An absent phrase (null) has no answer and logs nothing. From the
  // second call on, the same phrase returns the same list without an allocation.
  Decomposition optimalDecompositionOf(const std::vector<std::string>& words);
  Decomposition optimalDecompositionOf(const std::vector<std::string>* words);

  // The same without the opening line. `isSubsetOfWhole` is passed to the delegate: whether the
  // words are part of a phrase.
  Decomposition optimalDecompositionOf(const std::vector<std::string>& words, bool isSubsetOfWhole);

  // Why a phrase cannot be said: the positions of the words, counted from 0, that remain uncovered
  // in the split that covers the most words and, of several such, leaves out words furthest to the
  // right. A part counts as covered if it has a recording, or if an answer for it is remembered. No
  // positions: every word is covered, but a delegate's answers have more files than words, or a
  // failure is remembered for other words with the same key. Nothing:
  // the phrase is too long to be split. Does not ask the delegate, and remembers and counts
  // nothing.
  std::optional<std::vector<std::size_t>> uncoveredWordsOf(
      const std::vector<std::string>& words) const;

  // The names in an answer that are no recordings, each once, in the answer's order: only a
  // delegate gives such names.
  std::vector<std::string> namesWithoutRecording(const std::vector<std::string>& files) const;

  // Asked before every search. Not owned; may be absent. A new delegate does not change the
  // remembered answers.
  std::shared_ptr<DecomposerOverrides> delegate() const;
  void setDelegate(std::weak_ptr<DecomposerOverrides> delegate);

  // The names of the recordings in the bundle's order, duplicates included.
  const std::vector<std::string>& availableSoundFiles() const;

  class Implementation;  // internal

 private:
  Decomposer(std::string_view directory, std::shared_ptr<const ResourceBundle> bundle);

  const std::unique_ptr<Implementation> _implementation;
};

}  // namespace marlune

#endif  // MARLUNE_DECOMPOSE_DECOMPOSER_H_
