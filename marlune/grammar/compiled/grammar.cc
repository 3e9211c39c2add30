#include "marlune/grammar/compiled/grammar.h"

#include <algorithm>
#include <mutex>
#include <optional>
#include <utility>

#include "marlune/grammar/base/grammar_error.h"
#include "marlune/grammar/base/repetition.h"
#include "marlune/grammar/compiled/builder.h"
#include "marlune/grammar/compiled/result.h"
#include "marlune/grammar/file/grammar_loader.h"
#include "marlune/grammar/file/insert_directive.h"
#include "marlune/grammar/model/rule.h"
#include "marlune/grammar/model/simple_slot_sequence.h"
#include "marlune/util/tq_utils.h"

namespace marlune {

namespace {

// A rule with more passes is left to its object, which detects circles.
constexpr int kMostCompiledPasses = 256;

}  // namespace

class CompiledGrammar::Borrowed {
 public:
  explicit Borrowed(std::unique_ptr<Work>& home, const CompiledTables& tables)
      : _home(home), _work(std::move(home)) {
    if (!_work) {
      _work = std::make_unique<Work>();
      _work->agenda.resize(tables.rules.size());
    }
    _work->phrase.reset(*tables.vocabulary);
  }
  Work& work() { return *_work; }

  // Not called after an exception, which leaves the work in an unusable state.
  void giveBack() { _home = std::move(_work); }

 private:
  std::unique_ptr<Work>& _home;
  std::unique_ptr<Work> _work;
};

// Runs once per grammar: optimise this cold function for size.
[[gnu::cold]] std::unique_ptr<CompiledGrammar> CompiledGrammar::initFromFile(GrammarFile& file,
                                                                             std::string_view name,
                                                                             bool isTraced) {
  const std::lock_guard making(GrammarFile::making());
  std::shared_ptr<GrammarPart> root;
  std::optional<TQUtils::Silence> silence;
  if (isTraced) {
    file.isChanged() = true;
    root = GrammarObjects::rootIn(file.opened(), name);
    silence.emplace();
  }
  auto built = GrammarError::within(name, [&]() -> std::optional<CompiledBuilder::Result> {
    const Value plist = GrammarLoader::valueAtPath(piecesOf(name, '.'), file.opened());
    if (!plist.asDictionary()) return std::nullopt;
    return CompiledBuilder::build(plist, file.isChanged());
  });
  auto packed = file.putAway(built ? built->tables.vocabulary : nullptr);
  if (!built) return nullptr;
  // Holders of a retained tree may change it, so make the objects now.
  if (!root && !packed) {
    silence.emplace();
    root = GrammarObjects::rootIn(file.opened(), name);
  }
  auto objects =
      root ? std::make_unique<GrammarObjects>(std::move(root))
           : std::make_unique<GrammarObjects>(std::move(packed), name, std::move(built->objects));
  return std::unique_ptr<CompiledGrammar>(
      new CompiledGrammar(std::move(objects), std::move(built->tables)));
}

CompiledGrammar::CompiledGrammar(std::unique_ptr<GrammarObjects> objects, CompiledTables tables)
    : _objects(std::move(objects)), _tables(std::move(tables)) {}

std::shared_ptr<SimpleSlotSequence> CompiledGrammar::appliedToStrings(
    const std::vector<std::string>& strings) {
  Borrowed borrowed(_work, _tables);
  CompiledPhrase& phrase = borrowed.work().phrase;
  phrase.slots().push_back(phrase.blank());
  for (const std::string& string : strings) phrase.slots().push_back(phrase.fromString(string));
  phrase.slots().push_back(phrase.blank());
  CompiledObjects objects;
  std::shared_ptr<SimpleSlotSequence> result = _run(borrowed.work(), objects);
  if (!result) {
    result = SimpleSlotSequence::_withPendingSlots(
        std::make_unique<CompiledResult>(phrase, _tables.vocabulary));
  }
  borrowed.giveBack();
  return result;
}

std::shared_ptr<SimpleSlotSequence> CompiledGrammar::appliedTo(const SimpleSlotSequence& phrase) {
  Borrowed borrowed(_work, _tables);
  CompiledObjects objects;
  std::shared_ptr<SimpleSlotSequence> result;
  if (objects.read(phrase.slots(), borrowed.work().phrase)) {
    result = _run(borrowed.work(), objects);
    if (!result) result = SimpleSlotSequence::initWithArray(objects.write(borrowed.work().phrase));
  } else {
    result = _objects->root()->appliedTo(phrase);
  }
  borrowed.giveBack();
  return result;
}

std::shared_ptr<SimpleSlotSequence> CompiledGrammar::_run(Work& work,
                                                          CompiledObjects& objects) const {
  const std::vector<CompiledRule>& rules = _tables.rules;
  CompiledPhrase& phrase = work.phrase;
  if (rules.empty()) return nullptr;
  phrase.pad();
  work.mask = 0;
  _tables.index.callAlways(work.agenda);
  _call(work, 0);
  for (std::uint32_t number; (number = work.agenda.next()) != CompiledAgenda::kDone;) {
    const CompiledRule& rule = rules[number];
    if ((rule.mask & ~work.mask) != 0) continue;
    Outcome outcome = rule.isLeftToObject ? Outcome::tooHard : _apply(number, work);
    if (outcome == Outcome::unchanged) continue;
    if (outcome == Outcome::tooHard) {
      auto result = _objects->rule(number)->appliedTo(
          *SimpleSlotSequence::initWithArray(objects.write(phrase)));
      if (!objects.read(result->slots(), phrase)) {
        work.agenda.clear();
        return _applyObjects(number + 1, std::move(result));
      }
      _call(work, number + 1);
    }
    // Every rule pads the phrase, even one that does not apply, but nothing pads it after the last
    // rule.
    if (number + 1 < rules.size()) phrase.pad();
  }
  return nullptr;
}

std::shared_ptr<SimpleSlotSequence> CompiledGrammar::_applyObjects(
    std::uint32_t from, std::shared_ptr<SimpleSlotSequence> phrase) const {
  for (std::uint32_t number = from; number < ruleCount(); ++number) {
    phrase = _objects->rule(number)->appliedTo(*phrase);
  }
  return phrase;
}

void CompiledGrammar::_call(Work& work, std::uint32_t from) const {
  for (const CompiledPhrase::Slot& slot : work.phrase.slots()) {
    _tables.index.call(work.phrase, slot, from, work.agenda, work.mask);
  }
}

CompiledGrammar::Outcome CompiledGrammar::_apply(std::uint32_t number, Work& work) const {
  const CompiledRule& rule = _tables.rules[number];
  work.steps = work.kleeneSteps = 0;
  _findOccurrences(rule, work);
  if (work.occurrences.empty()) return Outcome::unchanged;
  work.original = work.phrase.slots();
  if (rule.repeats ? _repeat(number, work) : _rewrite(number, work)) return Outcome::changed;
  work.phrase.slots() = work.original;
  return Outcome::tooHard;
}

// Returns false when the rule is left to its object. A rule that never ends runs out of passes
// here, in whichever pass the object would detect the circle. The stop test gives the same result
// in every pass for both. Work is overestimated, so that a rule whose object would stop for too
// much work is left to it.
bool CompiledGrammar::_repeat(std::uint32_t number, Work& work) const {
  CompiledPhrase& phrase = work.phrase;
  const CompiledRule& rule = _tables.rules[number];
  const CompiledPatterns& patterns = _tables.patterns;
  const std::uint64_t weight = patterns.weightOf(rule.significant) +
                               patterns.weightOf(rule.before) + patterns.weightOf(rule.after);
  for (int pass = 0; pass < kMostCompiledPasses; ++pass) {
    work.before = phrase.slots();
    const std::uint64_t asked = work.before.size() + std::exchange(work.kleeneSteps, 0);
    work.steps += work.before.size() * Repetition::stepsOfSlot(phrase.mostAttributes()) +
                  Repetition::stepsOfMatching(asked * weight, phrase.mostAttributes()) +
                  Repetition::stepsOfText(phrase.mostText());
    if (pass > 0 && work.steps > Repetition::kMostSteps) return false;
    if (!_rewrite(number, work)) return false;
    phrase.pad();
    if (phrase.matches(work.before)) return true;
    _findOccurrences(rule, work);
  }
  return false;
}

// Rewrites the occurrences found. Returns false when one reaches outside the phrase, or the phrase
// would grow too long.
bool CompiledGrammar::_rewrite(std::uint32_t number, Work& work) const {
  const CompiledRule& rule = _tables.rules[number];
  CompiledPhrase& phrase = work.phrase;
  std::vector<CompiledPhrase::Slot>& slots = phrase.slots();
  const auto matched = static_cast<std::ptrdiff_t>(rule.significant.count);
  std::ptrdiff_t shift = 0;
  for (const std::int32_t found : work.occurrences) {
    const std::ptrdiff_t at = found + shift;
    if (at < 0 || at + matched > std::ssize(slots)) return false;
    const std::span<const CompiledPhrase::Slot> occurrence(slots.data() + at,
                                                           rule.significant.count);
    work.steps += _tables.productions.stepsOf(rule.production());
    const CompiledProductions::Run* const replacement = _tables.productions.replacementFor(
        rule.production(), phrase, occurrence, *_tables.vocabulary);
    if (!replacement) continue;
    const std::uint32_t firstNew = phrase.nextIdentity();
    work.replacement.clear();
    if (!_tables.productions.append(*replacement, phrase, occurrence, work.replacement))
      return false;
    work.steps += work.replacement.size() * Repetition::stepsOfProduced(phrase.mostAttributes());
    const std::ptrdiff_t grown = std::ssize(work.replacement) - matched;
    if (slots.size() + work.replacement.size() >
        SimpleSlotSequence::kLongestPhrase + rule.significant.count) {
      return false;
    }
    const auto place = slots.begin() + at;
    if (grown > 0) {
      slots.insert(place + matched, static_cast<std::size_t>(grown), CompiledPhrase::Slot());
    } else {
      slots.erase(place, place - grown);
    }
    std::copy(work.replacement.begin(), work.replacement.end(), slots.begin() + at);
    for (const CompiledPhrase::Slot& slot : work.replacement) {
      if (slot.identity < firstNew) continue;
      _tables.index.call(phrase, slot, number + 1, work.agenda, work.mask);
    }
    shift += grown;
  }
  return true;
}

void CompiledGrammar::_findOccurrences(const CompiledRule& rule, Work& work) const {
  work.occurrences.clear();
  if (rule.hasKleene) {
    _findWithKleene(rule, work);
  } else if (rule.anchor != CompiledRule::kNoAnchor) {
    _findAtAnchor(rule, work);
  } else {
    for (std::size_t start = 0; start < work.phrase.slots().size(); ++start) {
      if (!_matchesAt(rule, work.phrase, start)) continue;
      work.occurrences.push_back(static_cast<std::int32_t>(start));
    }
  }
}

void CompiledGrammar::_findAtAnchor(const CompiledRule& rule, Work& work) const {
  const CompiledPhrase& phrase = work.phrase;
  const CompiledPatterns::Element anchor = _tables.patterns.elements[rule.anchor];
  const std::ptrdiff_t count = std::ssize(phrase.slots());
  for (std::ptrdiff_t at = 0; at < count; ++at) {
    if (!_tables.patterns.matches(anchor, phrase, phrase.slots()[static_cast<std::size_t>(at)])) {
      continue;
    }
    const std::ptrdiff_t start = at + rule.anchorOffset;
    if (start < 0 || start >= count) continue;
    if (!_matchesAt(rule, phrase, static_cast<std::size_t>(start))) continue;
    work.occurrences.push_back(static_cast<std::int32_t>(start));
  }
}

bool CompiledGrammar::_matchesAt(const CompiledRule& rule, const CompiledPhrase& phrase,
                                 std::size_t start) const {
  const CompiledPatterns& patterns = _tables.patterns;
  return patterns.runMatches(rule.significant, phrase, start) &&
         patterns.runMatchesBackwards(rule.before, phrase, start) &&
         patterns.runMatches(rule.after, phrase, start + rule.significant.count);
}

// The post-context is matched at the start plus the number of slots in the significant pattern,
// even if the match took more or fewer.
void CompiledGrammar::_findWithKleene(const CompiledRule& rule, Work& work) const {
  const CompiledPhrase& phrase = work.phrase;
  const std::size_t count = phrase.slots().size();
  CompiledKleeneMatcher forwards(_tables.patterns, phrase, /*backwards=*/false);
  CompiledKleeneMatcher backwards(_tables.patterns, phrase, /*backwards=*/true);
  const std::vector<char> significant = forwards.matchesFrom(rule.significant);
  if (std::find(significant.begin(), significant.end() - 1, true) == significant.end() - 1) return;
  const std::vector<char> after = forwards.matchesFrom(rule.after);
  const std::vector<char> before = backwards.matchesFrom(rule.before);
  work.kleeneSteps += forwards.steps() + backwards.steps();
  for (std::size_t start = 0; start < count; ++start) {
    const std::size_t end = start + rule.significant.count;
    if (!significant[start] || !before[count - start]) continue;
    if (end > count ? rule.after.count > 0 : !after[end]) continue;
    work.occurrences.push_back(static_cast<std::int32_t>(start));
  }
}

}  // namespace marlune
