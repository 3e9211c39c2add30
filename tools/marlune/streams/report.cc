#include "tools/marlune/streams/report.h"

#include <algorithm>
#include <cstddef>
#include <iostream>

#include "tools/marlune/streams/answers.h"
#include "tools/marlune/text/shown_text.h"

namespace marlune::tool {

namespace {

// The words, or as many of the first ones as fit in a message.
std::string excerptOf(const Words& words) {
  constexpr std::size_t kMostBytes = 600;
  std::string text;
  for (const std::string& word : words) {
    if (!text.empty()) text += ' ';
    if (text.size() + word.size() > kMostBytes) return text + "...";
    text += word;
  }
  return text;
}

}  // namespace

void complain(std::string_view sentence) {
  flushAnswersBeforeMessage();
  // One write, so that lines logged by other threads cannot split the sentence.
  std::cerr << "marlune: " + shownLine(sentence) << std::flush;
}

void complainAbout(const Phrase& phrase, std::string_view reason) {
  std::string sentence;
  if (phrase.line != 0) sentence += "line " + std::to_string(phrase.line) + ": ";
  if (phrase.fault.empty()) sentence += "\"" + excerptOf(phrase.words) + "\": ";
  sentence += reason;
  complain(sentence);
}

std::string quoted(const Words& names) {
  std::string row;
  for (std::size_t i = 0; i < std::min(names.size(), kMostQuoted); ++i) {
    if (i > 0) row += ", ";
    row += '"' + excerptOf({names[i]}) + '"';
  }
  return names.size() > kMostQuoted ? row + " and others" : row;
}

}  // namespace marlune::tool
