#include "marlune/grammar/compiled/patterns.h"

#include <algorithm>

#include "marlune/util/utf16.h"

namespace marlune {

bool CompiledPatterns::runMatches(Run run, const CompiledPhrase& phrase,
                                  std::size_t position) const {
  if (run.count > phrase.slots().size() - position) return false;
  for (std::uint32_t i = 0; i < run.count; ++i) {
    if (!matches(run.first + i, phrase, position + i)) return false;
  }
  return true;
}

bool CompiledPatterns::runMatchesBackwards(Run run, const CompiledPhrase& phrase,
                                           std::size_t position) const {
  if (run.count > position) return false;
  for (std::uint32_t i = 0; i < run.count; ++i) {
    if (!matches(run.first + i, phrase, position - 1 - i)) return false;
  }
  return true;
}

bool CompiledPatterns::hasKleene(Run run) const {
  return std::any_of(elements.begin() + run.first, elements.begin() + run.first + run.count,
                     [](const Element& each) { return each.kind == Kind::kleene; });
}

std::uint64_t CompiledPatterns::weightOf(Run run) const {
  std::uint64_t weight = 0;
  for (std::uint32_t i = run.first; i < run.first + run.count; ++i) {
    const Element& element = elements[i];
    switch (element.kind) {
      case Kind::any:
      case Kind::none:
      case Kind::kleene:
        weight += 1 + weightOf({element.first, element.count});
        break;
      case Kind::literal:
        weight += std::max<std::uint64_t>(element.count, 1);
        break;
      case Kind::never:  // its attributes were not counted
        weight += CompiledPhrase::kMaxAttributes;
        break;
      default:
        ++weight;
    }
  }
  return weight;
}

bool CompiledPatterns::_matchesOther(const Element& element, const CompiledPhrase& phrase,
                                     const Slot& slot) const {
  switch (element.kind) {
    case Kind::word:
      return slot.content == element.first;
    case Kind::literal:
      return std::all_of(requirements.begin() + element.first,
                         requirements.begin() + element.first + element.count,
                         [&](const Requirement& each) { return _holds(each, phrase, slot); });
    case Kind::wildcard:
      return *Cell::_matchOfTypes(CellTypeWildcard, slot.type);
    case Kind::blank:
      return *Cell::_matchOfTypes(CellTypeBlank, slot.type);
    case Kind::any:
      return _anyMatches(element, phrase, slot);
    case Kind::none:
      return !_anyMatches(element, phrase, slot);
    case Kind::kleene:
    case Kind::never:
      break;
  }
  return false;
}

bool CompiledPatterns::_holds(const Requirement& requirement, const CompiledPhrase& phrase,
                              const Slot& slot) const {
  if (!requirement.isSuffix) {
    const Vocabulary::Id value = phrase.valueOf(slot, requirement.name);
    return std::max(value, Vocabulary::kEmpty) == requirement.value;
  }
  return slot.content != Vocabulary::kAbsent &&
         utf16Suffix(phrase.text(slot.content), requirement.name) == phrase.text(requirement.value);
}

bool CompiledPatterns::_anyMatches(const Element& element, const CompiledPhrase& phrase,
                                   const Slot& slot) const {
  for (std::uint32_t i = 0; i < element.count; ++i) {
    if (matches(elements[element.first + i], phrase, slot)) return true;
  }
  return false;
}

}  // namespace marlune
