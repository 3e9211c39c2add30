#include "marlune/grammar/sequence_matcher.h"

#include <algorithm>
#include <bit>

#include "marlune/grammar/kleene_slot.h"

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

// Whether asking the slots, or what their Kleene slots hold, may write lines.
bool mayWriteLines(const SlotArray& pattern) {
  return std::ranges::any_of(pattern, [](const std::shared_ptr<Slot>& slot) {
    if (const KleeneSlot* kleene = asKleene(*slot)) return kleene->slots()->_writesLines();
    return takesOne(*slot) && slot->_writesLines();
  });
}

}  // namespace

void SequenceMatcher::Positions::add(const Positions& others) {
  for (std::size_t i = 0; i < _words.size(); ++i) _words[i] |= others._words[i];
}

void SequenceMatcher::Positions::remove(const Positions& others) {
  for (std::size_t i = 0; i < _words.size(); ++i) _words[i] &= ~others._words[i];
}

bool SequenceMatcher::Positions::empty() const {
  return std::ranges::all_of(_words, [](std::uint64_t word) { return word == 0; });
}

template <typename Visit>
void SequenceMatcher::Positions::forEach(Visit visit) const {
  for (std::size_t i = 0; i < _words.size(); ++i) {
    for (std::uint64_t word = _words[i]; word != 0; word &= word - 1) {
      visit(i * 64 + static_cast<std::size_t>(std::countr_zero(word)));
    }
  }
}

SequenceMatcher::SequenceMatcher(const SlotArray& pattern, SlotRun target)
    : _pattern(pattern), _target(target), _way(Way::straight) {
  const bool hasKleene =
      std::ranges::any_of(pattern, [](const auto& slot) { return asKleene(*slot) != nullptr; });
  if (hasKleene) _way = mayWriteLines(pattern) ? Way::inOrder : Way::sets;
}

bool SequenceMatcher::matchesFrom(std::size_t start) {
  switch (_way) {
    case Way::straight:
      return _matchesStraight(start);
    case Way::inOrder:
      return _matchesInOrder(start);
    case Way::sets:
      return !_ends(_pattern, start).empty();
  }
  return false;
}

bool SequenceMatcher::_matchesStraight(std::size_t position) const {
  for (const std::shared_ptr<Slot>& slot : _pattern) {
    if (position == _target.count() || !takesOne(*slot)) return false;
    if (!slot->_matchesAt(_target, position)) return false;
    ++position;
  }
  return true;
}

// The recursion's order: go on until the pattern ends, where it matches, or fails; then add one
// repetition to the Kleene slot met last that can take another.
bool SequenceMatcher::_matchesInOrder(std::size_t position) {
  _continuations.clear();
  _choices.clear();
  if (_goOn({&_pattern, 0, 0, kNothing}, position)) return true;
  while (!_choices.empty()) {
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
      if (!takesOne(slot) || !slot._matchesAt(_target, position)) return false;
      ++position;
    }
  }
}

SequenceMatcher::Positions SequenceMatcher::_ends(const SlotArray& slots, std::size_t start) {
  Positions ends(_target.count());
  ends.add(start);
  for (const std::shared_ptr<Slot>& slot : slots) {
    Positions next(_target.count());
    ends.forEach([&](std::size_t position) {
      if (position == _target.count()) return;
      if (const KleeneSlot* kleene = asKleene(*slot)) {
        next.add(_endsOfRepetitions(*kleene, position));
      } else if (takesOne(*slot) && slot->_matchesAt(_target, position)) {
        next.add(position + 1);
      }
    });
    if (next.empty()) return next;
    ends = std::move(next);
  }
  return ends;
}

const SequenceMatcher::Positions& SequenceMatcher::_endsOfMembers(const KleeneSlot& slot,
                                                                  std::size_t start) {
  auto& known = _memos[&slot].once;
  const auto found = known.find(start);
  if (found != known.end()) return found->second;
  return known.emplace(start, _ends(slot.slots()->slots(), start)).first->second;
}

const SequenceMatcher::Positions& SequenceMatcher::_endsOfRepetitions(const KleeneSlot& slot,
                                                                      std::size_t start) {
  auto& known = _memos[&slot].repeated;
  const auto found = known.find(start);
  if (found != known.end()) return found->second;

  const std::size_t members = slot.slots()->count();
  const std::size_t most = members == 0 ? 0 : (_target.count() - start) / members;
  Positions reached(_target.count());
  reached.add(start);
  Positions latest = reached;  // what the last repetition reached first
  for (std::size_t n = 0; n < most && !latest.empty(); ++n) {
    Positions next(_target.count());
    latest.forEach([&](std::size_t position) { next.add(_endsOfMembers(slot, position)); });
    next.remove(reached);
    reached.add(next);
    latest = std::move(next);
  }
  return known.emplace(start, std::move(reached)).first->second;
}

}  // namespace marlune
