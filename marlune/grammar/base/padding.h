#ifndef MARLUNE_GRAMMAR_BASE_PADDING_H_
#define MARLUNE_GRAMMAR_BASE_PADDING_H_

namespace marlune {

// Adds the blanks that a phrase lacks: one in front unless it begins with a blank, one at the end
// unless it has two slots and ends with a blank. A single blank counts as one end only.
template <typename Slots, typename IsBlank, typename NewBlank>
void addMissingBlanks(Slots& slots, IsBlank isBlank, NewBlank newBlank) {
  const bool lacksFirst = slots.empty() || !isBlank(slots.front());
  const bool lacksLast = slots.size() < 2 || !isBlank(slots.back());
  if (lacksFirst) slots.insert(slots.begin(), newBlank());
  if (lacksLast) slots.push_back(newBlank());
}

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_BASE_PADDING_H_
