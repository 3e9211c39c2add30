#ifndef MARLUNE_ANNOUNCE_RECORDING_WORDS_H_
#define MARLUNE_ANNOUNCE_RECORDING_WORDS_H_

#include <span>
#include <string>
#include <vector>

#include "marlune/announce/prepared_phrase.h"

namespace marlune {

// Finds which words each recording says, and sets their firstWord and endWord. A recording is named
// by the key of its words, or by that key without brackets and the text between them. Recordings
// that are named otherwise come from overrides: neighbours of that kind share the words that the
// others leave.
void assignWords(std::span<const std::string> words, std::vector<SpokenRecording>& recordings);

}  // namespace marlune

#endif  // MARLUNE_ANNOUNCE_RECORDING_WORDS_H_
