#ifndef MARLUNE_GRAMMAR_BASE_KLEENE_MATCHER_H_
#define MARLUNE_GRAMMAR_BASE_KLEENE_MATCHER_H_

#include <cstddef>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

namespace marlune {

// Matches a pattern with repetitions against every suffix of a target at once, in time polynomial
// in both. Gives the same results as the plain recursion, which tries 0, 1, 2, ... repetitions and
// starts again on the longer pattern each time:
//
//  - a pattern that is not empty never matches where nothing of the target is left, even if it
//    could repeat everything zero times;
//  - n repetitions of a body of k slots are tried only where k * n slots are left. Inner
//    repetitions may make a body consume fewer than k slots, so this can rule out a match.
//
// A subclass describes the elements of the pattern. Positions count from the start of the target,
// in the direction of matching.
class KleeneMatcher {
 public:
  using Element = std::uint32_t;  // the number of one slot of the pattern, at any depth
  struct Run {
    Element first = 0;  // the slots of a sequence have consecutive numbers
    std::uint32_t count = 0;
  };

  explicit KleeneMatcher(std::size_t targetCount) : _end(targetCount) {}
  virtual ~KleeneMatcher() = default;

  // For each position from 0 to the target's count, inclusive: whether the pattern matches the rest
  // of the target from there.
  std::vector<char> matchesFrom(Run pattern);

  // The work so far: calls of _matchesAt, and set operations of similar cost.
  std::uint64_t steps() const { return _steps; }

 protected:
  virtual bool _repeats(Element element) const = 0;
  virtual Run _bodyOf(Element element) const = 0;
  // Whether a slot that does not repeat matches at a position before the end.
  virtual bool _matchesAt(Element element, std::size_t position) const = 0;

 private:
  // A set of positions, one bit each.
  using Positions = std::vector<std::uint64_t>;

  bool _asks(Element element, std::size_t position) const {
    ++_steps;
    return _matchesAt(element, position);
  }
  void _countSetOperation() const { _steps += 2 + _end / 256; }

  bool _isPlain(Run run) const;
  bool _runMatchesAt(Run run, std::size_t position) const;
  std::vector<char> _beforeSlot(Element element, const std::vector<char>& goal) const;
  std::vector<char> _beforePlainBody(Run body, std::vector<char> goal) const;
  std::vector<char> _beforeBody(Run body, const std::vector<char>& goal);
  const Positions& _reachOfRun(Run run, std::size_t position);
  const Positions& _reachOfRepetition(Element element, std::size_t position);
  Positions _reachOfElement(Element element, const Positions& from);

  Positions _none() const { return Positions(_end / 64 + 1); }
  template <typename Visit>
  static void _forEach(const Positions& positions, Visit visit);
  static bool _meets(const Positions& left, const Positions& right);

  std::size_t _end;
  mutable std::uint64_t _steps = 0;
  // Cached results, by the first element of a body or by element, and by position.
  std::map<std::pair<Element, std::size_t>, Positions> _runs, _repetitions;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_BASE_KLEENE_MATCHER_H_
