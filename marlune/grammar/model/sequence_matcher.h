#ifndef MARLUNE_GRAMMAR_MODEL_SEQUENCE_MATCHER_H_
#define MARLUNE_GRAMMAR_MODEL_SEQUENCE_MATCHER_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "marlune/grammar/model/slot.h"
#include "marlune/grammar/model/slot_run.h"

namespace marlune {

// Checks whether the rest of a target begins with a pattern, for any number of starts. "Begins
// with" is defined by this recursion over the remaining pattern and the remaining target:
//
//   - an empty pattern matches; otherwise an empty target does not;
//   - a simple slot, disjunction or negation must match the target's first slot, and the rest of
//     the pattern the rest of the target;
//   - a Kleene slot of k members stands for 0, 1, 2, ... times its members: the first number n for
//     which these, followed by the rest of the pattern, match. No number past the one where k * n
//     exceeds the remaining target is tried, and without members only 0;
//   - a slot of any other kind does not match.
//
// Direct execution takes exponential time with nested or successive Kleene slots. The matcher
// therefore uses one of three methods, always with the same result:
//
// Without a Kleene slot, the pattern is matched slot by slot.
//
// With Kleene slots, KleeneMatcher matches all starts at once.
//
// If matching a slot can write lines, the number and order of the matches are observable. Such a
// pattern is matched in the order of the recursion, with positions instead of copies and with the
// open choices in an array instead of on the stack. A pattern that takes more than kMostSteps this
// way, over all starts, would practically never end, so KleeneMatcher takes over.
class SequenceMatcher {
 public:
  static constexpr std::size_t kMostSteps = 100000;

  // Neither may change while the matcher is used.
  SequenceMatcher(const SlotArray& pattern, SlotRun target);

  // Whether the target's slots from `start` on begin with the pattern. `start` may be the count.
  bool matchesFrom(std::size_t start);

  // The work so far: comparisons of two words, and operations of similar cost. A comparison that
  // writes a line counts kStepsOfLine; a disjunction counts all its members.
  std::uint64_t steps() const { return _work; }
  static constexpr std::uint64_t kStepsOfLine = 60;

 private:
  enum class Way : unsigned char { straight, inOrder, sets };

  // The rest of a pattern during matching: the slots from `index` on, then those slots `copies`
  // more times, then `next`. Stored in _continuations.
  static constexpr std::size_t kNothing = static_cast<std::size_t>(-1);
  struct Continuation {
    const SlotArray* slots;
    std::size_t index;
    std::size_t copies;
    std::size_t next;
  };
  // A Kleene slot whose number of repetitions is being tried.
  struct Choice {
    const SlotArray* members;
    std::size_t rest;  // the continuation after the slot
    std::size_t position;
    std::size_t repetitions;
  };

  bool _matchesStraight(std::size_t position);
  bool _matchesInOrder(std::size_t position);
  bool _goOn(Continuation at, std::size_t position);
  bool _matchesBySets(std::size_t position);

  const SlotArray& _pattern;
  SlotRun _target;
  Way _way;
  std::vector<char> _matches;  // indexed by start, when matched by sets
  std::vector<Continuation> _continuations;
  std::vector<Choice> _choices;
  std::size_t _steps = 0;               // of matching in order
  std::vector<std::uint64_t> _weights;  // the steps of matching each slot, without Kleene slots
  std::uint64_t _work = 0;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_SEQUENCE_MATCHER_H_
