#ifndef MARLUNE_TESTS_EXAMPLES_WORKED_LINES_H_
#define MARLUNE_TESTS_EXAMPLES_WORKED_LINES_H_

#include <fstream>
#include <istream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace marlune {

// A phrase and its expected result, written "words => words" on one line.
struct WorkedLine {
  std::string phrase;
  std::string result;
};

inline WorkedLine workedLine(const std::string& line) {
  constexpr std::string_view kArrow = "=>";
  const std::size_t arrow = line.find(kArrow);
  if (arrow == std::string::npos) return {line, "(no => in this line)"};
  const std::size_t result = line.find_first_not_of(' ', arrow + kArrow.size());
  return {line.substr(0, line.find_last_not_of(' ', arrow - 1) + 1),
          result == std::string::npos ? "" : line.substr(result)};
}

// The lines of a file, without empty lines and those that begin with "#".
inline std::vector<WorkedLine> workedLinesIn(const std::string& path) {
  std::vector<WorkedLine> lines;
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    if (!line.empty() && line.front() != '#') lines.push_back(workedLine(line));
  }
  return lines;
}

inline std::vector<std::string> wordsOf(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

inline std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

}  // namespace marlune

#endif  // MARLUNE_TESTS_EXAMPLES_WORKED_LINES_H_
