#ifndef MARLUNE_GRAMMAR_COMPILED_PATTERNS_H_
#define MARLUNE_GRAMMAR_COMPILED_PATTERNS_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "marlune/grammar/base/kleene_matcher.h"
#include "marlune/grammar/base/vocabulary.h"
#include "marlune/grammar/compiled/phrase.h"

namespace marlune {

// All slot patterns of a compiled grammar, in two flat arrays. Matching them never writes a line:
// rules whose matching writes lines are left to the grammar's objects.
class CompiledPatterns {
 public:
  using Run = KleeneMatcher::Run;  // consecutive slots of a pattern or of a group
  using Slot = CompiledPhrase::Slot;

  enum class Kind : std::uint8_t {
    word,      // the content equals a given text other than ""
    literal,   // all requirements hold
    wildcard,  // not a blank
    blank,
    any,     // one of the members
    none,    // none of the members
    kleene,  // the members, repeated
    never,
  };

  struct Element {
    Kind kind = Kind::never;
    std::uint32_t count : 24 = 0;  // of members or requirements
    std::uint32_t first = 0;       // index of the first member or requirement; for a word, its text
  };

  // An attribute that a literal requires; or, with isSuffix, the last `name` characters of the
  // content.
  struct Requirement {
    std::uint32_t name : 31;
    std::uint32_t isSuffix : 1;
    Vocabulary::Id value;
  };

  std::vector<Element> elements;
  std::vector<Requirement> requirements;

  // REQUIRES: the element is not a repetition.
  bool matches(const Element& element, const CompiledPhrase& phrase, const Slot& slot) const {
    if (element.kind == Kind::word) return slot.content == element.first;
    return _matchesOther(element, phrase, slot);
  }
  bool matches(std::uint32_t element, const CompiledPhrase& phrase, std::size_t position) const {
    return matches(elements[element], phrase, phrase.slots()[position]);
  }

  // Whether a run without repetitions matches the phrase from `position` on.
  bool runMatches(Run run, const CompiledPhrase& phrase, std::size_t position) const;
  // The same backwards: the run's first slot matches right before `position`, its second before
  // that, and so on.
  bool runMatchesBackwards(Run run, const CompiledPhrase& phrase, std::size_t position) const;

  bool hasKleene(Run run) const;

  // At least the number of steps that matching every slot of the run once takes, as SequenceMatcher
  // counts them.
  std::uint64_t weightOf(Run run) const;

 private:
  bool _matchesOther(const Element& element, const CompiledPhrase& phrase, const Slot& slot) const;
  bool _holds(const Requirement& requirement, const CompiledPhrase& phrase, const Slot& slot) const;
  bool _anyMatches(const Element& element, const CompiledPhrase& phrase, const Slot& slot) const;
};

// Matches a run with repetitions against a compiled phrase, forwards or backwards.
class CompiledKleeneMatcher : public KleeneMatcher {
 public:
  CompiledKleeneMatcher(const CompiledPatterns& patterns, const CompiledPhrase& phrase,
                        bool backwards)
      : KleeneMatcher(phrase.slots().size()),
        _patterns(patterns),
        _phrase(phrase),
        _backwards(backwards) {}

 protected:
  bool _repeats(Element element) const override {
    return _patterns.elements[element].kind == CompiledPatterns::Kind::kleene;
  }
  Run _bodyOf(Element element) const override {
    return {_patterns.elements[element].first, _patterns.elements[element].count};
  }
  bool _matchesAt(Element element, std::size_t position) const override {
    const std::size_t last = _phrase.slots().size() - 1;
    return _patterns.matches(element, _phrase, _backwards ? last - position : position);
  }

 private:
  const CompiledPatterns& _patterns;
  const CompiledPhrase& _phrase;
  bool _backwards;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_COMPILED_PATTERNS_H_
