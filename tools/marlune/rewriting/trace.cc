#include "tools/marlune/rewriting/trace.h"

#include <cstddef>

#include "tools/marlune/rewriting/slot_text.h"
#include "tools/marlune/text/shown_text.h"

namespace marlune::tool {

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

std::string readableTrace(const GrammarWalk& walk) {
  std::string text = shownLine(textOf(walk.before().get()));
  std::size_t changes = 0;
  for (const Turn& turn : walk.turns()) {
    const bool changed = turn.after != turn.before;
    if (!changed && turn.messages.empty()) continue;
    text += shownLine("  " + headingOf(turn));
    for (const std::string& message : turn.messages) text += shownLine("    " + message);
    if (!changed) continue;
    text += shownLine("    " + textOf(turn.after.get()));
    ++changes;
  }
  const std::size_t rules = walk.turns().size();
  return text + std::to_string(changes) + " of " + std::to_string(rules) +
         (rules == 1 ? " rule" : " rules") + " changed the phrase\n";
}

}  // namespace marlune::tool
