#ifndef MARLUNE_ANNOUNCE_PHRASE_PREPARER_H_
#define MARLUNE_ANNOUNCE_PHRASE_PREPARER_H_

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "marlune/announce/prepared_phrase.h"
#include "marlune/decompose/decomposer.h"
#include "marlune/grammar/parser.h"
#include "marlune/platform/recording_facts.h"
#include "marlune/platform/resource_bundle.h"

namespace marlune {

// Chains a parser and a decomposer, and examines the recordings of the result. Internal: not
// installed.
//
// Threads: any.
class PhrasePreparer {
 public:
  PhrasePreparer(std::unique_ptr<Parser> parser, std::unique_ptr<Decomposer> decomposer,
                 std::string directory, std::shared_ptr<const ResourceBundle> bundle);

  // Remembers phrases that can be said, and does not allocate for one of those.
  Preparation prepare(const std::vector<std::string>& words);

 private:
  using Words = std::vector<std::string>;
  struct HashOfWords {
    std::size_t operator()(const Words& words) const;
  };
  // A recording that can be played.
  struct Known {
    std::string path;
    std::optional<double> seconds;
  };

  Preparation _prepare(const Words& words);
  std::optional<PhraseProblem> _rewrite(const Words& words, Words& rewritten);
  std::optional<PhraseProblem> _decompose(PreparedPhrase& phrase);
  PhraseProblem _uncovered(const Words& words) const;
  std::optional<PhraseProblem> _examine(PreparedPhrase& phrase);
  const Known* _examine(const std::string& name, std::string& fault);

  std::mutex _mutex;  // guards all below
  const std::unique_ptr<Parser> _parser;
  const std::unique_ptr<Decomposer> _decomposer;
  const std::string _directory;
  const std::shared_ptr<const ResourceBundle> _bundle;
  std::unordered_map<Words, std::shared_ptr<const PreparedPhrase>, HashOfWords> _phrases;
  std::map<std::string, Known> _recordings;  // by name
};

}  // namespace marlune

#endif  // MARLUNE_ANNOUNCE_PHRASE_PREPARER_H_
