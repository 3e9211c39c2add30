#ifndef MARLUNE_ANNOUNCE_PREPARED_PHRASE_H_
#define MARLUNE_ANNOUNCE_PREPARED_PHRASE_H_

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "marlune/announce/phrase_problem.h"

namespace marlune {

// A recording of a phrase, and the rewritten words that it says.
struct SpokenRecording {
  std::string name;                 // of the file, without extension
  std::string path;                 // of the file
  std::size_t firstWord = 0;        // its words are [firstWord, endWord) of the rewritten ones,
  std::size_t endWord = 0;          // counted from 0
  std::optional<double> seconds{};  // its length; nothing if the platform does not know it
};

// A phrase that can be said whole: every recording exists and could be opened.
struct PreparedPhrase {
  std::vector<std::string> words;      // as given
  std::vector<std::string> rewritten;  // by the grammar; without a grammar the same
  // In playing order. Where an override has decided how words are said, its recordings share them.
  std::vector<SpokenRecording> recordings;
  std::optional<double> seconds;  // of the whole; nothing if the platform does not know it
};

// A phrase that can be said, or the reason why not.
class Preparation {
 public:
  Preparation(std::shared_ptr<const PreparedPhrase> phrase) : _content(std::move(phrase)) {}
  Preparation(PhraseProblem problem) : _content(std::move(problem)) {}

  bool isSayable() const { return _content.index() == 0; }

  // REQUIRES: isSayable().
  const std::shared_ptr<const PreparedPhrase>& phrase() const { return std::get<0>(_content); }

  // REQUIRES: not isSayable().
  const PhraseProblem& problem() const { return std::get<1>(_content); }

 private:
  std::variant<std::shared_ptr<const PreparedPhrase>, PhraseProblem> _content;
};

}  // namespace marlune

#endif  // MARLUNE_ANNOUNCE_PREPARED_PHRASE_H_
