#ifndef MARLUNE_GRAMMAR_BASE_REPETITION_H_
#define MARLUNE_GRAMMAR_BASE_REPETITION_H_

#include <cstdint>

namespace marlune {

// How far a repeating rule may go. Its work is measured in steps of about 10 ns, like those of
// SequenceMatcher. 1,000 passes over 1,000 words take 20 million steps plus their comparisons.
struct Repetition {
  static constexpr int kMostPasses = 10000;
  static constexpr std::uint64_t kMostSteps = 250000000;

  // The steps of carrying one slot to the next pass, of producing one, and of matching. A look-up
  // passes the attributes one by one, so their number makes matching dearer and counts squared.
  static constexpr std::uint64_t stepsOfSlot(std::uint64_t attributes) {
    return 20 + 2 * attributes + attributes * attributes / 4;
  }
  static constexpr std::uint64_t stepsOfProduced(std::uint64_t attributes) {
    return 20 + 6 * attributes + attributes * attributes;
  }
  static constexpr std::uint64_t stepsOfMatching(std::uint64_t steps,
                                                 std::uint64_t mostAttributes) {
    return steps * (1 + mostAttributes / 8);
  }

  // The steps of moving that many bytes of text, and of searching that many expansions.
  static constexpr std::uint64_t stepsOfText(std::uint64_t bytes) { return bytes / 16; }
  static constexpr std::uint64_t stepsOfChoice(std::uint64_t expansions) {
    return 1 + expansions / 16;
  }
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_BASE_REPETITION_H_
