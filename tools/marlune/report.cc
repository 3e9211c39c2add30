#include "tools/marlune/report.h"

#include <iostream>

namespace marlune::tool {

void complain(std::string_view sentence) {
  // In one piece, so that it stays whole beside what the library logs.
  std::cerr << "marlune: " + std::string(sentence) + "\n" << std::flush;
}

void complainAbout(const Phrase& phrase, std::string_view reason) {
  std::string sentence;
  if (phrase.line != 0) sentence += "line " + std::to_string(phrase.line) + ": ";
  sentence += "\"" + joined(phrase.words) + "\": ";
  sentence += reason;
  complain(sentence);
}

std::string quoted(const Words& names) {
  std::string row;
  for (const std::string& name : names) {
    if (!row.empty()) row += ", ";
    row += '"' + name + '"';
  }
  return row;
}

}  // namespace marlune::tool
