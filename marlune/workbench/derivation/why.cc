#include "marlune/workbench/derivation/why.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>
#include <span>
#include <stdexcept>

#include "marlune/grammar/model/conditional_production.h"
#include "marlune/workbench/derivation/captured_log.h"
#include "marlune/workbench/derivation/slot_text.h"
#include "marlune/workbench/derivation/trace.h"

namespace marlune {

namespace {

using Positions = std::vector<std::int32_t>;

// The lines about one turn, not indented.
class Reasons {
 public:
  explicit Reasons(const Turn& turn)
      : _turn(turn), _leftHandSide(turn.rule->leftHandSide().get()) {}

  std::vector<std::string> lines() {
    if (!_leftHandSide || !_leftHandSide->significantSlots()) return {"has no significant slots"};
    if (!_turn.rule->rightHandSide()) return {"has no right-hand side"};
    const CapturedLog quiet;
    for (const std::int32_t index : _positions({}, {})) _explain(index);
    if (_lines.empty()) {
      _lines.push_back("its significant slots " + textOf(&_significant()) + " were not found");
    }
    return _lines;
  }

  bool applies() const { return _end > 0; }

 private:
  const SimpleSlotSequence& _significant() const { return *_leftHandSide->significantSlots(); }

  // Positions of the significant slots between these contexts.
  Positions _positions(const SlotArray& before, const SlotArray& after) const {
    return SlotsInContext::initWithArraysForSignificantSlots(_significant().slots(), before, after)
        ->indicesOfOccurrencesInTarget(*_turn.before);
  }

  void _explain(std::int32_t index) {
    const auto position = static_cast<std::size_t>(index);
    const auto occurrence = _turn.before->occurrenceOfSequence(_significant(), position);
    const std::string place =
        " at " + std::to_string(index) + (occurrence ? ", " + textOf(occurrence.get()) : "");
    const SlotSequence& pre = *_leftHandSide->preContext();
    const SlotSequence& post = *_leftHandSide->postContext();
    if (!std::ranges::count(_positions(pre.slots(), {}), index)) {
      _lines.push_back("found" + place + ", but the pre-context " + textOf(&pre) +
                       " does not precede it");
    } else if (!std::ranges::count(_positions({}, post.slots()), index)) {
      _lines.push_back("found" + place + ", but the post-context " + textOf(&post) +
                       " does not follow it");
    } else {
      _explainProduction("applies" + place, position, occurrence.get());
    }
  }

  void _explainProduction(const std::string& application, std::size_t position,
                          const SimpleSlotSequence* occurrence) {
    // An occurrence that overlaps a rewritten one no longer matches the slots in `before`.
    const bool overlaps = position < _end;
    const auto key = overlaps ? std::nullopt : _missingKey(occurrence);
    if (key) {
      _lines.push_back(application + ", but the conditional key \"" + *key +
                       "\" has no expansion (" + _expansionKeys() + ")");
      return;
    }
    _lines.push_back(application + (overlaps ? ", overlapping the previous one" : ""));
    _end = position + std::max<std::size_t>(1, _significant().count());
  }

  const ConditionalProduction* _conditional() const {
    const GenericProduction& production = *_turn.rule->rightHandSide();
    switch (production.kind()) {
      case GenericProduction::Kind::conditional:
        return static_cast<const ConditionalProduction*>(&production);
      case GenericProduction::Kind::newProduction:
        break;
    }
    return nullptr;
  }

  std::optional<std::string> _missingKey(const SimpleSlotSequence* occurrence) const {
    if (!_conditional()) return std::nullopt;
    try {
      std::string key = _conditional()->keyForOccurrence(occurrence);
      if (!_conditional()->expansionForKey(key)) return key;
    } catch (const std::out_of_range&) {
      // The rule logs its own message.
    }
    return std::nullopt;
  }

  std::string _expansionKeys() const {
    constexpr std::size_t kMostShown = 12;
    const auto& expansions = _conditional()->expansions();
    if (!expansions || expansions->empty()) return "it has none";
    std::string keys;
    for (std::size_t i = 0; i < std::min(kMostShown, expansions->size()); ++i) {
      keys += (i == 0 ? "it has: " : ", ") + *(*expansions)[i].first;
    }
    return keys + (expansions->size() > kMostShown ? ", ..." : "");
  }

  const Turn& _turn;
  const SlotsInContext* _leftHandSide;
  std::vector<std::string> _lines;
  std::size_t _end = 0;  // end of the last occurrence that the rule applies to
};

// Names the later rules that replaced words made in this turn. Words are tracked by slot identity.
std::string laterRulesOver(const Turn& turn, std::span<const Turn> later) {
  SlotArray made;
  const auto isIn = [](const PhrasePointer& phrase) {
    return [&phrase](const auto& slot) { return std::ranges::count(phrase->slots(), slot) > 0; };
  };
  std::ranges::remove_copy_if(turn.after->slots(), std::back_inserter(made), isIn(turn.before));
  std::string names;
  for (const Turn& next : later) {
    const std::size_t count = made.size();
    if (next.after != next.before) {
      std::erase_if(made, [&](const auto& slot) { return !isIn(next.after)(slot); });
    }
    if (made.size() < count) names += (names.empty() ? "" : ", ") + nameOf(next);
  }
  return names;
}

std::vector<std::string> linesAbout(const Turn& turn, std::span<const Turn> later) {
  Reasons reasons(turn);
  std::vector<std::string> lines = reasons.lines();
  lines.insert(lines.end(), turn.messages.begin(), turn.messages.end());
  if (turn.after != turn.before) {
    lines.push_back("the phrase became " + textOf(turn.after.get()));
    const std::string names = laterRulesOver(turn, later);
    if (!names.empty()) lines.push_back("its result was replaced later by " + names);
  } else if (reasons.applies()) {
    lines.emplace_back("the phrase did not change");
  }
  return lines;
}

}  // namespace

bool RuleName::isOf(const Turn& turn) const {
  const std::string whole = "." + grammar + (turn.path == "ROOT" ? "" : "." + turn.path);
  return turn.path == rule || (!rule.empty() && whole.ends_with("." + rule));
}

std::vector<std::string> whyLines(const GrammarWalk& walk, const RuleName& name) {
  std::vector<std::string> lines;
  const std::span<const Turn> turns(walk.turns());
  for (std::size_t i = 0; i < turns.size(); ++i) {
    if (!name.isOf(turns[i])) continue;
    lines.push_back(nameOf(turns[i]) + " at its turn: " + textOf(turns[i].before.get()));
    for (const std::string& line : linesAbout(turns[i], turns.subspan(i + 1))) {
      lines.push_back("  " + line);
    }
  }
  return lines;
}

}  // namespace marlune
