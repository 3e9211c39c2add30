#ifndef MARLUNE_GRAMMAR_MODEL_SEQUENCE_MATCHER_H_
#define MARLUNE_GRAMMAR_MODEL_SEQUENCE_MATCHER_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "marlune/grammar/model/slot.h"
#include "marlune/grammar/model/slot_run.h"

namespace marlune {

// Asks whether the rest of a target begins with a pattern, for as many starts as one likes. What
// "begins with" means is this recursion over the remaining pattern and the remaining target:
//
//   - an empty pattern matches; else an empty target does not;
//   - a simple slot, disjunction or negation must match the target's first slot, and the rest of
//     the pattern the rest of the target;
//   - a Kleene slot of k members stands for 0, 1, 2, ... times its members: the first number n for
//     which these, with the rest of the pattern behind them, match; no number past the one where
//     k * n exceeds the remaining target is tried, and without members none but 0;
//   - a slot of any other kind does not match.
//
// Carried out as it stands, that takes exponential time with nested or successive Kleene slots. So
// it is answered in one of three ways, always with the same result:
//
// Without a Kleene slot the pattern is walked slot by slot.
//
// With Kleene slots, by KleeneMatcher, for all starts at once.
//
// When asking a slot can write lines, how often and in which order it is asked can be observed.
// Such a pattern is matched in the order of the recursion, with positions instead of copies and
// with its open choices in an array instead of on the stack. A pattern that takes more than
// kMostSteps that way, whatever the starts, is one that would not come to an end: KleeneMatcher
// then answers.
class SequenceMatcher {
 public:
  static constexpr std::size_t kMostSteps = 100000;

  // Both must stay as they are while the matcher is used.
  SequenceMatcher(const SlotArray& pattern, SlotRun target);

  // Whether the target's slots from `start` on begin with the pattern. `start` may be the count.
  bool matchesFrom(std::size_t start);

  // The work so far: comparisons of two words, and what takes as long. A comparison that writes a
  // line counts kStepsOfLine; a disjunction counts all its members.
  std::uint64_t steps() const { return _work; }
  static constexpr std::uint64_t kStepsOfLine = 60;

 private:
  enum class Way : unsigned char { straight, inOrder, sets };

  // What is left of a pattern in the middle of its matching: slots from `index` on, those slots
  // `copies` times more, then what `next` says. Lives in _continuations.
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
    std::size_t rest;  // the continuation behind the slot
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
  std::vector<char> _matches;  // by start, when found by sets
  std::vector<Continuation> _continuations;
  std::vector<Choice> _choices;
  std::size_t _steps = 0;               // of matching in order
  std::vector<std::uint64_t> _weights;  // the steps of asking each slot, matching straight
  std::uint64_t _work = 0;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_SEQUENCE_MATCHER_H_
