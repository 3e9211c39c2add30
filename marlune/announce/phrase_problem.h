#ifndef MARLUNE_ANNOUNCE_PHRASE_PROBLEM_H_
#define MARLUNE_ANNOUNCE_PHRASE_PROBLEM_H_

#include <string>
#include <vector>

namespace marlune {

// Why a phrase cannot be said.
struct PhraseProblem {
  enum class Kind {
    nothingToSay,      // no words, or none are left by the grammar or an override
    noGrammar,         // the parser has no grammar
    unfinished,        // a rule was stopped: it would not end, or the phrase would grow too large
    uncoveredWords,    // no recording says these words
    tooLong,           // the phrase has too many words to be split into recordings
    missingRecording,  // an override names a recording that does not exist
    unreadable,        // a recording cannot be opened, or is truncated
  };

  Kind kind = Kind::nothingToSay;
  // For uncoveredWords, the rewritten words without a recording, in order. For missingRecording and
  // unreadable, the words that the recording says. Otherwise empty.
  std::vector<std::string> words{};
  // What is to be mended: the rule (unfinished), the override's key (missingRecording, nothingToSay
  // by an override), or the recording's name (unreadable). Empty if unknown.
  std::string culprit{};
  std::string message{};  // for people: a sentence without a full stop
};

}  // namespace marlune

#endif  // MARLUNE_ANNOUNCE_PHRASE_PROBLEM_H_
