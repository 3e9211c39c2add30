#include "marlune/workbench/derivation/trace.h"

#include <cstddef>

#include "marlune/workbench/derivation/slot_text.h"

namespace marlune {

namespace {

std::string headingOf(const Turn& turn) {
  std::string heading = nameOf(turn) + ": ";
  const auto& leftHandSide = turn.rule->leftHandSide();
  if (!leftHandSide) return heading + textOf(nullptr);
  const auto& before = leftHandSide->preContext();
  const auto& after = leftHandSide->postContext();
  heading += textOf(leftHandSide->significantSlots().get());
  if (before && !before->empty()) heading += " after " + textOf(before.get());
  if (after && !after->empty()) heading += " before " + textOf(after.get());
  return heading;
}

}  // namespace

std::string nameOf(const Turn& turn) {
  return turn.path + " (" + std::to_string(turn.rule->order()) + ")";
}

std::vector<std::string> readableTrace(const GrammarWalk& walk) {
  std::vector<std::string> lines{textOf(walk.before().get())};
  std::size_t changes = 0;
  for (const Turn& turn : walk.turns()) {
    const bool changed = turn.after != turn.before;
    if (!changed && turn.messages.empty()) continue;
    lines.push_back("  " + headingOf(turn));
    for (const std::string& message : turn.messages) lines.push_back("    " + message);
    if (!changed) continue;
    lines.push_back("    " + textOf(turn.after.get()));
    ++changes;
  }
  const std::size_t rules = walk.turns().size();
  lines.push_back(std::to_string(changes) + " of " + std::to_string(rules) +
                  (rules == 1 ? " rule" : " rules") + " changed the phrase");
  return lines;
}

}  // namespace marlune
