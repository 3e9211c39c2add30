#include "marlune/announce/recording_words.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

#include "marlune/decompose/joined_key.h"

namespace marlune {

namespace {

std::string withoutBrackets(const std::string& key) {
  std::string plain;
  bool isInside = false;
  for (const char each : key) {
    if (each == '[') isInside = true;
    if (!isInside) plain += each;
    if (each == ']') isInside = false;
  }
  return plain;
}

bool isNamedBy(const std::string& name, std::span<const std::string> words) {
  const std::string key = decompositionKey(words);
  return name == key || name == withoutBrackets(key);
}

// The position after the words that the recording says, if they begin at `first`.
std::optional<std::size_t> endOfWords(const std::string& name, std::span<const std::string> words,
                                      std::size_t first, std::size_t end) {
  for (std::size_t to = first + 1; to <= end; ++to) {
    if (isNamedBy(name, words.subspan(first, to - first))) return to;
  }
  return std::nullopt;
}

// The position of the first word that the recording says, if its words end before `end`.
std::optional<std::size_t> startOfWords(const std::string& name, std::span<const std::string> words,
                                        std::size_t first, std::size_t end) {
  for (std::size_t from = end; from-- > first;) {
    if (isNamedBy(name, words.subspan(from, end - from))) return from;
  }
  return std::nullopt;
}

}  // namespace

// From both ends inwards: what an override has decided remains in the middle.
void assignWords(std::span<const std::string> words, std::vector<SpokenRecording>& recordings) {
  std::size_t first = 0;
  std::size_t end = words.size();
  std::size_t next = 0;
  std::size_t last = recordings.size();
  for (; next < last; ++next) {
    const auto to = endOfWords(recordings[next].name, words, first, end);
    if (!to) break;
    recordings[next].firstWord = std::exchange(first, *to);
    recordings[next].endWord = first;
  }
  for (; last > next; --last) {
    const auto from = startOfWords(recordings[last - 1].name, words, first, end);
    if (!from) break;
    recordings[last - 1].endWord = std::exchange(end, *from);
    recordings[last - 1].firstWord = end;
  }
  for (; next < last; ++next) {
    recordings[next].firstWord = first;
    recordings[next].endWord = end;
  }
}

}  // namespace marlune
