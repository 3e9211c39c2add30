#include "marlune/grammar/model/sequence_matcher.h"

#include <algorithm>
#include <vector>

#include "marlune/grammar/base/kleene_matcher.h"
#include "marlune/grammar/model/cell.h"
#include "marlune/grammar/model/kleene_slot.h"

namespace marlune {

namespace {

const KleeneSlot* asKleene(const Slot& slot) {
  return slot.kind() == Slot::Kind::kleene ? static_cast<const KleeneSlot*>(&slot) : nullptr;
}

// Whether a slot takes exactly one position of the target.
bool takesOne(const Slot& slot) {
  return slot.kind() == Slot::Kind::simple || slot.kind() == Slot::Kind::disjunction ||
         slot.kind() == Slot::Kind::negation;
}

// The most steps that matching the slot once takes.
std::uint64_t weightOf(const Slot& slot) {
  if (slot.kind() == Slot::Kind::simple) {
    const Cell* const cell = slot._cellOrNull().get();
    const std::size_t compared = cell && cell->attributes() ? cell->attributes()->count() : 1;
    return std::max<std::uint64_t>(compared, 1) *
           (slot._writesLines() ? SequenceMatcher::kStepsOfLine : 1);
  }
  if (!takesOne(slot)) return 1;
  std::uint64_t weight = 1;
  for (const auto& member : static_cast<const CompoundSlot&>(slot).slots()->slots()) {
    weight += weightOf(*member);
  }
  return weight;
}

// Whether matching the slots, or the members of their Kleene slots, may write lines.
bool mayWriteLines(const SlotArray& pattern) {
  return std::ranges::any_of(pattern, [](const std::shared_ptr<Slot>& slot) {
    if (const KleeneSlot* kleene = asKleene(*slot)) return kleene->slots()->_writesLines();
    return takesOne(*slot) && slot->_writesLines();
  });
}

// A pattern of slot objects, its slots numbered level by level.
class SlotKleeneMatcher : public KleeneMatcher {
 public:
  SlotKleeneMatcher(const SlotArray& pattern, SlotRun target)
      : KleeneMatcher(target.count()), _target(target), _pattern(_numbered(pattern)) {
    for (Element element = 0; element < _slots.size(); ++element) {
      if (const KleeneSlot* kleene = asKleene(*_slots[element])) {
        _bodies.resize(element + 1);
        _bodies[element] = _numbered(kleene->slots()->slots());
      }
    }
    for (const Slot* slot : _slots) _weights.push_back(weightOf(*slot));
  }

  std::uint64_t weighedSteps() const { return steps() + _more; }

  std::vector<char> matchesOfPattern() { return matchesFrom(_pattern); }

 protected:
  bool _repeats(Element element) const override { return asKleene(*_slots[element]) != nullptr; }
  Run _bodyOf(Element element) const override { return _bodies[element]; }
  bool _matchesAt(Element element, std::size_t position) const override {
    _more += _weights[element] - 1;
    return takesOne(*_slots[element]) && _slots[element]->_matchesAt(_target, position);
  }

 private:
  Run _numbered(const SlotArray& slots) {
    const auto first = static_cast<Element>(_slots.size());
    for (const std::shared_ptr<Slot>& slot : slots) _slots.push_back(slot.get());
    return {first, static_cast<std::uint32_t>(slots.size())};
  }

  SlotRun _target;
  std::vector<const Slot*> _slots;
  std::vector<std::uint64_t> _weights;  // indexed by element
  mutable std::uint64_t _more = 0;      // steps beyond one for each call
  std::vector<Run> _bodies;             // indexed by element, for Kleene slots
  Run _pattern;
};

}  // namespace

SequenceMatcher::SequenceMatcher(const SlotArray& pattern, SlotRun target)
    : _pattern(pattern), _target(target), _way(Way::straight) {
  const bool hasKleene =
      std::ranges::any_of(pattern, [](const auto& slot) { return asKleene(*slot) != nullptr; });
  if (hasKleene) _way = mayWriteLines(pattern) ? Way::inOrder : Way::sets;
  if (hasKleene) return;
  for (const auto& slot : pattern) _weights.push_back(weightOf(*slot));
}

bool SequenceMatcher::matchesFrom(std::size_t start) {
  switch (_way) {
    case Way::straight:
      return _matchesStraight(start);
    case Way::inOrder:
      return _matchesInOrder(start);
    case Way::sets:
      return _matchesBySets(start);
  }
  return false;
}

bool SequenceMatcher::_matchesStraight(std::size_t position) {
  for (std::size_t i = 0; i < _pattern.size(); ++i, ++position) {
    if (position == _target.count() || !takesOne(*_pattern[i])) return false;
    _work += _weights[i];
    if (!_pattern[i]->_matchesAt(_target, position)) return false;
  }
  return true;
}

// In the recursion's order: continue until the pattern ends, where it matches, or until it fails;
// then add one repetition to the latest Kleene slot that can take another.
bool SequenceMatcher::_matchesInOrder(std::size_t position) {
  _continuations.clear();
  _choices.clear();
  if (_goOn({&_pattern, 0, 0, kNothing}, position)) return true;
  while (!_choices.empty()) {
    if (_steps > kMostSteps) {
      _way = Way::sets;
      return _matchesBySets(position);
    }
    ++_choices.back().repetitions;
    const Choice choice = _choices.back();
    const std::size_t most =
        choice.members->empty() ? 0 : (_target.count() - choice.position) / choice.members->size();
    if (choice.repetitions > most) {
      _continuations.resize(choice.rest);
      _choices.pop_back();
    } else {
      _continuations.resize(choice.rest + 1);
      if (_goOn({choice.members, 0, choice.repetitions - 1, choice.rest}, choice.position)) {
        return true;
      }
    }
  }
  return false;
}

bool SequenceMatcher::_goOn(Continuation at, std::size_t position) {
  while (true) {
    ++_steps;
    ++_work;
    if (at.index == at.slots->size()) {
      if (at.copies > 0) {
        at = {at.slots, 0, at.copies - 1, at.next};
      } else if (at.next == kNothing) {
        return true;
      } else {
        at = _continuations[at.next];
      }
      continue;
    }
    if (position == _target.count()) return false;
    const Slot& slot = *(*at.slots)[at.index];
    ++at.index;
    if (const KleeneSlot* kleene = asKleene(slot)) {
      _choices.push_back({&kleene->slots()->slots(), _continuations.size(), position, 0});
      _continuations.push_back(at);
    } else {
      _work += weightOf(slot);
      if (!takesOne(slot) || !slot._matchesAt(_target, position)) return false;
      ++position;
    }
  }
}

bool SequenceMatcher::_matchesBySets(std::size_t position) {
  if (_matches.empty()) {
    SlotKleeneMatcher matcher(_pattern, _target);
    _matches = matcher.matchesOfPattern();
    _work += matcher.weighedSteps();
  }
  return _matches[position];
}

}  // namespace marlune
