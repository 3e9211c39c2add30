#include "tools/marlune/trace.h"

#include <cstddef>
#include <string_view>

namespace marlune::tool {

namespace {

constexpr std::string_view kRule = "Applying '";
constexpr std::string_view kResult = "Midway Result: ";

// What stands behind `label` on its line, without blanks around it.
std::string_view fieldOf(std::string_view text, std::string_view label) {
  const std::size_t at = text.find(label);
  if (at == std::string_view::npos) return "";
  const std::size_t start = text.find_first_not_of(' ', at + label.size());
  if (start == std::string_view::npos || text[start] == '\n') return "";
  const std::size_t end = text.find('\n', start);
  const std::string_view field = text.substr(start, end - start);
  return field.substr(0, field.find_last_not_of(' ') + 1);
}

// "Applying 'Units' (3): ..." with its printed left-hand side, which takes four lines, as
// "Units (3): ([km]) after ([ten]) before ([in])".
std::string headingOf(std::string_view line) {
  const std::string_view rule = line.substr(kRule.size());
  const std::size_t name = rule.find("' (");
  const std::size_t order = rule.find("): ");
  if (name == std::string_view::npos || order == std::string_view::npos) return std::string(rule);
  std::string heading(rule.substr(0, name));
  heading += rule.substr(name + 1, order + 2 - name);
  heading += fieldOf(rule, "significant:");
  const std::string_view before = fieldOf(rule, "preContext:");
  const std::string_view after = fieldOf(rule, "postContext:");
  if (!before.empty()) heading.append(" after ").append(before);
  if (!after.empty()) heading.append(" before ").append(after);
  return heading;
}

// Follows the phrase through the lines. A directory's result repeats that of its last rule, so
// only a result that differs belongs to the rule before it.
class TraceReader {
 public:
  explicit TraceReader(const std::string& before) : _phrase(before), _text(before + "\n") {}

  void read(std::string_view line) {
    if (line.starts_with(kRule)) {
      _heading = headingOf(line);
      ++_rules;
    } else if (line.starts_with(kResult)) {
      readResult(line.substr(kResult.size()));
    }
  }

  void readResult(std::string_view phrase) {
    if (phrase == _phrase) return;
    _text += "  " + _heading + "\n    ";
    _text += phrase;
    _text += '\n';
    _phrase = phrase;
    ++_changes;
  }

  std::string text() const {
    return _text + std::to_string(_changes) + " of " + std::to_string(_rules) +
           (_rules == 1 ? " rule" : " rules") + " changed the phrase\n";
  }

 private:
  std::string _phrase;
  std::string _text;
  std::string _heading;
  std::size_t _rules = 0;
  std::size_t _changes = 0;
};

}  // namespace

std::string readableTrace(const Trace& trace) {
  TraceReader reader(trace.before);
  for (const std::string& line : trace.lines) reader.read(line);
  reader.readResult(trace.after);  // a grammar that is a single rule logs no result
  return reader.text();
}

std::string rawTrace(const Trace& trace) {
  std::string text;
  for (const std::string& line : trace.lines) text += line + "\n";
  return text;
}

}  // namespace marlune::tool
