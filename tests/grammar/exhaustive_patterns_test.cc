// Every pattern of up to three slots over two words, the blank and the wildcard, with compound
// slots of one or two of them, against every phrase of up to four of the two words. Compares the
// compiled form with the objects, and both with a plain recursion unless an occurrence reaches
// beyond the phrase (about every fifth case). A build with assertions takes every 211th pattern.

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "marlune/grammar/compiled/grammar.h"
#include "marlune/grammar/file/grammar_file.h"
#include "marlune/grammar/model/simple_slot_sequence.h"
#include "support/platform_fixture.h"
#include "support/plist_notation.h"

namespace marlune {
namespace {

#ifdef NDEBUG
constexpr std::size_t kEvery = 1;
#else
constexpr std::size_t kEvery = 211;
#endif

using Words = std::vector<std::string>;

constexpr char kSimple[] = {'a', 'b', 'E', '?'};

// A slot of a pattern: a simple one, or "+", "*" or "~" over one or two.
struct PatternSlot {
  char kind;  // '\0' for a simple slot, which is the only member
  std::string members;
};

std::vector<PatternSlot> allSlots() {
  std::vector<PatternSlot> slots;
  for (const char kind : {'\0', '+', '*', '~'}) {
    for (const char first : kSimple) {
      slots.push_back({kind, {first}});
      for (const char second : kSimple) {
        if (kind) slots.push_back({kind, {first, second}});
      }
    }
  }
  return slots;
}

bool memberMatches(char member, char target) {
  return member == '?' ? target != 'E' : member == target;
}

bool anyMatches(const std::string& members, char target) {
  for (const char member : members) {
    if (memberMatches(member, target)) return true;
  }
  return false;
}

using Pattern = std::vector<const PatternSlot*>;

// Whether the pattern from its slot `at` matches the beginning of `target`. A repetition takes its
// members as often as needed; each way is tried, the fewest times first.
bool matches(const Pattern& pattern, std::size_t at, std::string_view target) {
  if (at == pattern.size()) return true;
  if (target.empty()) return false;
  const PatternSlot& slot = *pattern[at];
  if (slot.kind != '*') {
    const bool isMember = anyMatches(slot.members, target.front());
    return isMember != (slot.kind == '~') && matches(pattern, at + 1, target.substr(1));
  }
  for (;;) {
    if (matches(pattern, at + 1, target)) return true;
    for (const char member : slot.members) {
      if (target.empty() || !memberMatches(member, target.front())) return false;
      target.remove_prefix(1);
    }
  }
}

std::vector<std::string> allPhrases() {
  std::vector<std::string> phrases{""};
  for (std::size_t i = 0; phrases[i].size() < 4; ++i) {
    phrases.push_back(phrases[i] + 'a');
    phrases.push_back(phrases[i] + 'b');
  }
  return phrases;
}

Value notation(char simple) { return Value::string(simple == 'E' ? "_E" : std::string(1, simple)); }

Value notation(const PatternSlot& slot) {
  if (!slot.kind) return notation(slot.members.front());
  std::vector<Value> elements{Value::string(std::string(1, slot.kind))};
  for (const char member : slot.members) elements.push_back(notation(member));
  return Value::array(std::make_shared<Array>(std::move(elements)));
}

// A file whose rule sets the first word of each occurrence to "!" and keeps the others.
Value fileFor(const Pattern& pattern) {
  std::vector<Value> slots, kept;
  for (const PatternSlot* slot : pattern) {
    kept.push_back(plist("{_index=#" + std::to_string(slots.size()) +
                         (slots.empty() ? "; content='!'}" : "}")));
    slots.push_back(notation(*slot));
  }
  Value file = plist("{Main={_lhs={}; _rhs=[]}}");
  const auto main = file.asDictionary()->valueForKey("Main").asDictionary();
  main->valueForKey("_lhs").asDictionary()->setValueForKey(
      Value::array(std::make_shared<Array>(std::move(slots))), "_significantSlots");
  main->setValueForKey(Value::array(std::make_shared<Array>(std::move(kept))), "_rhs");
  return file;
}

class ExhaustivePatternsTest : public PlatformFixture {
 protected:
  void compare(const Pattern& pattern) {
    Value file = fileFor(pattern);
    const auto rule = GrammarPart::instanceFromPlist(file.asDictionary()->valueForKey("Main"));
    GrammarFile packed(std::move(file));
    const auto compiled = CompiledGrammar::initFromFile(packed, "Main", /*isTraced=*/false);
    packed.putAway(nullptr);
    for (const Phrase& phrase : _phrases) {
      const Words strings = compiled->appliedToStrings(phrase.words)->stringArray();
      if (const auto expected = _expected(pattern, phrase)) {
        ASSERT_EQ(strings, *expected) << shown(pattern) << " in " << phrase.slots;
      }
      ASSERT_EQ(rule->appliedTo(*phrase.sequence)->stringArray(), strings)
          << shown(pattern) << " in " << phrase.slots;
      ++compared;
    }
  }

  static std::string shown(const Pattern& pattern) {
    std::string text;
    for (const PatternSlot* slot : pattern) {
      text += slot->kind ? std::string("[") + slot->kind + slot->members + "]" : slot->members;
    }
    return text;
  }

  std::size_t compared = 0;

 private:
  struct Phrase {
    explicit Phrase(const std::string& letters) : slots('E' + letters + 'E') {
      for (const char letter : letters) words.emplace_back(1, letter);
      sequence = SimpleSlotSequence::blankBufferedSlotSequenceWithStrings(words);
    }

    std::string slots;
    Words words;
    std::shared_ptr<SimpleSlotSequence> sequence;
  };

  // The words of the result. Nothing when an occurrence reaches beyond the phrase, since a pattern
  // that takes fewer words than it has slots replaces as many as it has slots.
  static std::optional<Words> _expected(const Pattern& pattern, const Phrase& phrase) {
    std::string slots = phrase.slots;
    for (std::size_t i = 0; i < phrase.slots.size(); ++i) {
      if (!matches(pattern, 0, std::string_view(phrase.slots).substr(i))) continue;
      if (i + pattern.size() > slots.size()) return std::nullopt;
      slots[i] = '!';
    }
    Words words;
    for (const char slot : slots) {
      if (slot != 'E') words.emplace_back(1, slot);
    }
    return words;
  }

  const std::vector<Phrase> _phrases = [] {
    std::vector<Phrase> phrases;
    for (const std::string& letters : allPhrases()) phrases.emplace_back(letters);
    return phrases;
  }();
};

TEST_F(ExhaustivePatternsTest, CompiledFormAndObjectsFindWhatThePlainRecursionFinds) {
  const std::vector<PatternSlot> slots = allSlots();
  std::size_t number = 0;
  Pattern pattern;
  const auto compareAll = [&](const auto& self, std::size_t left) -> void {
    if (!pattern.empty() && number++ % kEvery == 0) compare(pattern);
    if (left == 0 || HasFatalFailure()) return;
    for (const PatternSlot& slot : slots) {
      pattern.push_back(&slot);
      self(self, left - 1);
      pattern.pop_back();
    }
  };
  compareAll(compareAll, 3);
  EXPECT_EQ(number, 64u + 64 * 64 + 64 * 64 * 64);
  std::printf("%zu patterns, every %zuth: %zu comparisons\n", number, kEvery, compared);
}

}  // namespace
}  // namespace marlune
