#include "marlune/grammar/base/kleene_matcher.h"

#include <bit>

namespace marlune {
namespace {

void add(std::vector<std::uint64_t>& positions, std::size_t position) {
  positions[position / 64] |= std::uint64_t{1} << (position % 64);
}

}  // namespace

// Works backwards: from where the rest matches, derive where slot + rest matches.
std::vector<char> KleeneMatcher::matchesFrom(Run pattern) {
  std::vector<char> goal(_end + 1, true);
  for (Element element = pattern.first + pattern.count; element-- > pattern.first;) {
    if (!_repeats(element)) {
      goal = _beforeSlot(element, goal);
      continue;
    }
    const Run body = _bodyOf(element);
    if (_isPlain(body)) {
      if (body.count > 0) goal = _beforePlainBody(body, std::move(goal));
    } else {
      goal = _beforeBody(body, goal);
    }
    goal[_end] = false;
  }
  return goal;
}

bool KleeneMatcher::_isPlain(Run run) const {
  for (Element element = run.first; element < run.first + run.count; ++element) {
    if (_repeats(element)) return false;
  }
  return true;
}

bool KleeneMatcher::_runMatchesAt(Run run, std::size_t position) const {
  for (std::uint32_t i = 0; i < run.count; ++i) {
    if (!_asks(run.first + i, position + i)) return false;
  }
  return true;
}

std::vector<char> KleeneMatcher::_beforeSlot(Element element, const std::vector<char>& goal) const {
  std::vector<char> result(_end + 1);
  for (std::size_t at = 0; at < _end; ++at) {
    result[at] = goal[at + 1] && _asks(element, at);
  }
  return result;
}

// Each repetition consumes one position for each slot of the body, so the bound on repetitions
// holds automatically.
std::vector<char> KleeneMatcher::_beforePlainBody(Run body, std::vector<char> goal) const {
  if (body.count > _end) return goal;
  for (std::size_t at = _end - body.count + 1; at-- > 0;) {
    if (!goal[at]) goal[at] = goal[at + body.count] && _runMatchesAt(body, at);
  }
  return goal;
}

// Finds breadth first the fewest repetitions that lead from each position to a goal. The bound then
// decides whether that many may be tried.
std::vector<char> KleeneMatcher::_beforeBody(Run body, const std::vector<char>& goal) {
  std::vector<char> found = goal;
  std::vector<char> result = goal;
  Positions latest = _none();
  for (std::size_t at = 0; at <= _end; ++at) {
    if (goal[at]) add(latest, at);
  }
  for (std::size_t repetitions = 1; repetitions * body.count <= _end; ++repetitions) {
    Positions next = _none();
    bool any = false;
    for (std::size_t at = 0; at < _end; ++at) {
      if (!found[at]) _countSetOperation();
      if (found[at] || !_meets(_reachOfRun(body, at), latest)) continue;
      add(next, at);
      found[at] = any = true;
      result[at] = repetitions * body.count <= _end - at;
    }
    if (!any) break;
    latest = std::move(next);
  }
  return result;
}

// The positions at which a match of all slots of `run`, each once, can end.
const KleeneMatcher::Positions& KleeneMatcher::_reachOfRun(Run run, std::size_t position) {
  const auto [place, isNew] = _runs.try_emplace({run.first, position});
  if (isNew) {
    Positions reached = _none();
    add(reached, position);
    for (std::uint32_t i = 0; i < run.count; ++i) reached = _reachOfElement(run.first + i, reached);
    place->second = std::move(reached);
  }
  return place->second;
}

KleeneMatcher::Positions KleeneMatcher::_reachOfElement(Element element, const Positions& from) {
  Positions reached = _none();
  const bool repeats = _repeats(element);
  _forEach(from, [&](std::size_t at) {
    if (at == _end) return;
    if (repeats) {
      const Positions& more = _reachOfRepetition(element, at);
      _countSetOperation();
      for (std::size_t i = 0; i < more.size(); ++i) reached[i] |= more[i];
    } else if (_asks(element, at)) {
      add(reached, at + 1);
    }
  });
  return reached;
}

const KleeneMatcher::Positions& KleeneMatcher::_reachOfRepetition(Element element,
                                                                  std::size_t position) {
  const auto [place, isNew] = _repetitions.try_emplace({element, position});
  if (!isNew) return place->second;
  const Run body = _bodyOf(element);
  Positions reached = _none();
  add(reached, position);
  Positions latest = reached;
  for (std::size_t repetitions = 1; body.count > 0 && repetitions * body.count <= _end - position;
       ++repetitions) {
    Positions next = _none();
    bool any = false;
    _forEach(latest, [&](std::size_t at) {
      if (at == _end) return;
      const Positions& more = _reachOfRun(body, at);
      _countSetOperation();
      for (std::size_t i = 0; i < more.size(); ++i) next[i] |= more[i] & ~reached[i];
    });
    for (std::size_t i = 0; i < next.size(); ++i) {
      any = any || next[i] != 0;
      reached[i] |= next[i];
    }
    if (!any) break;
    latest = std::move(next);
  }
  return place->second = std::move(reached);
}

template <typename Visit>
void KleeneMatcher::_forEach(const Positions& positions, Visit visit) {
  for (std::size_t word = 0; word < positions.size(); ++word) {
    for (std::uint64_t bits = positions[word]; bits != 0; bits &= bits - 1) {
      visit(word * 64 + static_cast<std::size_t>(std::countr_zero(bits)));
    }
  }
}

bool KleeneMatcher::_meets(const Positions& left, const Positions& right) {
  for (std::size_t i = 0; i < left.size(); ++i) {
    if ((left[i] & right[i]) != 0) return true;
  }
  return false;
}

}  // namespace marlune
