#include "marlune/workbench/derivation/slot_text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <string_view>

#include "marlune/grammar/model/cell.h"
#include "marlune/grammar/model/compound_slot.h"

namespace marlune {

namespace {

// Longer lists of alternatives are unreadable.
constexpr std::size_t kMostMembers = 8;

std::string joinedTexts(std::span<const std::shared_ptr<Slot>> slots, std::string_view separator);

std::string textOfCell(const Cell& cell) {
  static constexpr std::array<std::string_view, 5> kPrinted{"content", "pre", "post", "firstTone",
                                                            "lastTone"};
  std::string attributes;
  if (cell.attributes()) {
    for (const auto& [name, value] : cell.attributes()->entries()) {
      if (std::ranges::find(kPrinted, *name) != kPrinted.end()) continue;
      attributes += (attributes.empty() ? "" : ", ") + *name + "=" + value.text();
    }
  }
  return cell.description() + (attributes.empty() ? "" : "{" + attributes + "}");
}

std::string textOfSlot(const Slot& slot) {
  if (const auto& cell = slot._cellOrNull()) return textOfCell(*cell);
  const auto members = [&slot](std::string_view separator) {
    const std::span all(static_cast<const CompoundSlot&>(slot).slots()->slots());
    const std::size_t shown = std::min(kMostMembers, all.size());
    std::string text = joinedTexts(all.first(shown), separator);
    if (shown < all.size()) {
      text.append(separator).append(std::to_string(all.size() - shown)).append(" more");
    }
    return "(" + text + ")";
  };
  switch (slot.kind()) {
    case Slot::Kind::disjunction:
      return members(" + ");
    case Slot::Kind::kleene:
      return members(" . ") + "*";
    case Slot::Kind::negation:
      return "~" + members(" + ");
    default:
      return slot.description();
  }
}

std::string joinedTexts(std::span<const std::shared_ptr<Slot>> slots, std::string_view separator) {
  std::string text;
  for (const auto& slot : slots) {
    if (&slot != &slots.front()) text += separator;
    text += textOfSlot(*slot);
  }
  return text;
}

}  // namespace

std::string textOf(const SlotSequence* slots) {
  return slots ? joinedTexts(slots->slots(), ".") : "(null)";
}

}  // namespace marlune
