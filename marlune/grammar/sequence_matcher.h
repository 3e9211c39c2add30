#ifndef MARLUNE_GRAMMAR_SEQUENCE_MATCHER_H_
#define MARLUNE_GRAMMAR_SEQUENCE_MATCHER_H_

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "marlune/grammar/slot.h"
#include "marlune/grammar/slot_run.h"

namespace marlune {

class KleeneSlot;

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
// With Kleene slots, by sets of positions. Let ends(X, i) be the positions where the slots X can
// end when they begin at i. The rule about the empty target asks of each slot in X that there be a
// target slot left when its turn comes, and nothing of the position behind X: whether what follows
// X is empty, and may thus stand at the target's end, is for what follows to decide. So ends(X, i)
// does not depend on what surrounds X, and ends(XY, i) is the union of ends(Y, j) over the j in
// ends(X, i). For a Kleene slot with the members K it is every j that can be reached from i by n
// steps p -> ends(K, p) for an n with k * n <= the target's length - i; the bound looks at the
// target left at the slot itself, not at each repetition. As a j that n steps reach is tried with
// the smallest such n as well, it is enough to go breadth first from i for so many levels. Sets
// are kept for (Kleene slot, position), which makes the time polynomial: about
// slots * length * length * length / 64 in the worst case.
//
// When asking a slot can write lines, how often and in which order it is asked can be observed.
// Such a pattern is matched in the order of the recursion, with positions instead of copies and
// with its open choices in an array instead of on the stack.
class SequenceMatcher {
 public:
  // Both must stay as they are while the matcher is used.
  SequenceMatcher(const SlotArray& pattern, SlotRun target);

  // Whether the target's slots from `start` on begin with the pattern. `start` may be the count.
  bool matchesFrom(std::size_t start);

 private:
  enum class Way : unsigned char { straight, inOrder, sets };
  using Words = std::vector<std::uint64_t>;

  // A set of positions of the target, its end included.
  class Positions {
   public:
    explicit Positions(std::size_t targetCount) : _words(targetCount / 64 + 1) {}
    void add(std::size_t position) { _words[position / 64] |= std::uint64_t{1} << position % 64; }
    void add(const Positions& others);
    void remove(const Positions& others);
    bool empty() const;
    // Calls visit(position) for each position, ascending.
    template <typename Visit>
    void forEach(Visit visit) const;

   private:
    Words _words;
  };

  // Where a Kleene slot can lead from the positions asked for so far.
  struct Memo {
    std::unordered_map<std::size_t, Positions> once;      // its members once
    std::unordered_map<std::size_t, Positions> repeated;  // any number of times
  };

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

  bool _matchesStraight(std::size_t position) const;
  bool _matchesInOrder(std::size_t position);
  bool _goOn(Continuation at, std::size_t position);

  Positions _ends(const SlotArray& slots, std::size_t start);
  const Positions& _endsOfMembers(const KleeneSlot& slot, std::size_t start);
  const Positions& _endsOfRepetitions(const KleeneSlot& slot, std::size_t start);

  const SlotArray& _pattern;
  SlotRun _target;
  Way _way;
  std::unordered_map<const KleeneSlot*, Memo> _memos;
  std::vector<Continuation> _continuations;
  std::vector<Choice> _choices;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_SEQUENCE_MATCHER_H_
