// Compares the compiled grammar with a plain reference and with the tree it was compiled from. The
// environment sets the number of cases and the seed:
//
//     MARLUNE_GRAMMARS=25000 MARLUNE_SEED=7 grammar_test --gtest_filter='CompiledTest.*'

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "marlune/grammar/compiled/agenda.h"
#include "marlune/grammar/compiled/grammar.h"
#include "marlune/grammar/file/grammar_file.h"
#include "marlune/grammar/file/packed_list.h"
#include "marlune/grammar/model/simple_slot.h"
#include "marlune/grammar/model/simple_slot_sequence.h"
#include "marlune/grammar/parser.h"
#include "reference/reference_grammar.h"
#include "support/platform_fixture.h"
#include "support/plist_notation.h"
#include "support/random_grammar.h"

namespace marlune {
namespace {

using Words = std::vector<std::string>;
using Phrase = std::shared_ptr<SimpleSlotSequence>;

std::uint64_t fromEnvironment(const char* name, std::uint64_t otherwise) {
  const char* const text = std::getenv(name);
  return text ? std::strtoull(text, nullptr, 10) : otherwise;
}

// A phrase in full detail: types, attributes in order, and which slots are the same object as
// another or as a slot of `input`.
std::string detailed(const SimpleSlotSequence& phrase, const SlotArray& input) {
  SlotArray seen = input;
  std::string text;
  for (const auto& slot : phrase.slots()) {
    const Cell& cell = *slot->_cellOrNull();
    const auto place = std::find(seen.begin(), seen.end(), slot);
    text += std::to_string(place - seen.begin()) + ":" + std::to_string(cell.type());
    if (place == seen.end()) seen.push_back(slot);
    text += cell.attributes() ? formatted("%@\n", {cell.attributes()->asPlist()}) : "none\n";
  }
  return text;
}

class CompiledTest : public PlatformFixture {
 protected:
  // Expands the file's inserts, makes the part under "Main", and compiles it, which packs the file.
  // REQUIRES: the file's containers have no other holder.
  void compile(Value tree) {
    while (Parser::insertStatementsFromOriginal(tree, tree)) {
    }
    root = GrammarPart::instanceFromPlist(tree.asDictionary()->valueForKey("Main"));
    GrammarFile file(std::move(tree));
    compiled = CompiledGrammar::initFromFile(file, "Main", /*isTraced=*/false);
    ASSERT_NE(file.putAway(nullptr), nullptr);
  }

  // The result for words; checks that all details and the lines equal the tree's.
  Phrase compared(const Words& words) {
    const Phrase input = SimpleSlotSequence::blankBufferedSlotSequenceWithStrings(words);
    log->clear();
    const Phrase expected = root->appliedTo(*input);
    const std::vector<std::string> lines = log->lines();
    log->clear();
    const Phrase result = compiled->appliedToStrings(words);
    EXPECT_EQ(log->lines(), lines);
    EXPECT_EQ(result->stringArray(), expected->stringArray());
    EXPECT_EQ(detailed(*result, {}), detailed(*expected, {}));
    EXPECT_EQ(result->stringArray(), expected->stringArray());
    const Phrase ofPhrase = compiled->appliedTo(*input);
    EXPECT_EQ(detailed(*ofPhrase, input->slots()), detailed(*expected, input->slots()));
    log->clear();
    return result;
  }

  // The result for words, of the tree if traced. Leaves the lines in the log.
  Phrase resultOf(const Words& words, bool isTraced) {
    log->clear();
    preferences->set(ZKPlistNotificationDefault, Value::boolean(isTraced));
    const Phrase result =
        isTraced ? root->appliedTo(*SimpleSlotSequence::blankBufferedSlotSequenceWithStrings(words))
                 : compiled->appliedToStrings(words);
    preferences->set(ZKPlistNotificationDefault, Value::boolean(false));
    return result;
  }

  std::shared_ptr<GrammarPart> root;
  std::unique_ptr<CompiledGrammar> compiled;
};

// The compiled form is compared with the reference and with the tree, whose trace must not change
// the result.
TEST_F(CompiledTest, RandomGrammarsGiveWhatReferenceAndTreeGive) {
  const std::uint64_t firstSeed = fromEnvironment("MARLUNE_SEED", 20240612);
  const std::uint64_t grammars = fromEnvironment("MARLUNE_GRAMMARS", 2000);
  constexpr int kPhrases = 5;
  std::uint64_t count = 0, rewritten = 0;
  for (std::uint64_t seed = firstSeed; seed < firstSeed + grammars; ++seed) {
    RandomGrammar random(seed), again(seed);
    const Value file = random.file();
    reference::Grammar reference(file, "Main");
    reference.mostSteps = 50'000;  // beyond SequenceMatcher::kMostSteps, lines are left out
    compile(again.file());
    for (int i = 0; i < kPhrases; ++i) {
      const Words words = random.phrase();
      const auto expected = reference.appliedAlone(words);
      if (!expected) continue;
      const Words strings = resultOf(words, false)->stringArray();
      ASSERT_EQ(log->lines(), reference.lines) << seed;
      if (i == 0) {
        ASSERT_EQ(resultOf(words, true)->stringArray(), strings) << seed;
      }
      ASSERT_EQ(strings, reference::Grammar::words(*expected)) << seed;
      ASSERT_EQ(compared(words)->description(), reference::printed(*expected)) << seed;
      ASSERT_FALSE(HasFailure()) << formatted("seed %lu: %@\n%@", {seed, file, words});
      ++count;
      rewritten += strings != words;
    }
  }
  std::printf("%llu cases, %llu of them rewritten, from seed %llu\n",
              static_cast<unsigned long long>(count), static_cast<unsigned long long>(rewritten),
              static_cast<unsigned long long>(firstSeed));
  EXPECT_GT(count, grammars * kPhrases * 9 / 10);
  EXPECT_GT(rewritten, count / 3);
}

struct FixedCase {
  std::string_view why, main;
  Words words, result;
};
const FixedCase kFixed[] = {
    {"a repetition in a pre-context reads backwards",
     "{_lhs={_preContext=[s, [*, b, c]]; _significantSlots=[z]}; _rhs=[x]}",
     {"s", "b", "c", "z", "s", "c", "b", "z"},
     {"s", "b", "c", "x", "s", "c", "b", "z"}},
    {"an empty value is part of the key, a missing one is not",
     "{A={_order=#1; _lhs={_significantSlots=[a]}; _rhs=[{_index=#0; p=''; q='1'}]};"
     " B={_order=#2; _lhs={_significantSlots=[b]}; _rhs=[{_index=#0; q='1'}]};"
     " C={_order=#3; _lhs={_significantSlots=[[+, a, b]]};"
     " _rhs={_delimiter='|'; _signature=[{_index=#0; _attribute=p}, {_index=#0; _attribute=q}];"
     " _expansions={'|1'=[x]; '1'=[y]}}}}",
     {"a", "b"},
     {"x", "y"}},
    {"for a repeating rule a missing attribute equals an empty one",
     "{A={_order=#1; _lhs={_significantSlots=[a]}; _rhs=[{_index=#0; g=''}]};"
     " B={_order=#2; _repeat=#1; _lhs={_significantSlots=[a]};"
     " _rhs=[{_index=#-1; content=a; h='1'; post={_index=#0; _attribute=h}}]}}",
     {"a"},
     {"a"}},
};

TEST_F(CompiledTest, FixedGrammarsGiveTheirResults) {
  for (const FixedCase& c : kFixed) {
    SCOPED_TRACE(c.why);
    compile(plist("{Main=" + std::string(c.main) + "}"));
    EXPECT_EQ(compared(c.words)->stringArray(), c.result);
  }
}

// Deeper repetitions and longer phrases than in random grammars.
class RandomRepetitions {
 public:
  explicit RandomRepetitions(std::uint32_t seed) : _random(seed) {}

  std::size_t below(std::size_t count) { return _random() % count; }

  Value rule() {
    auto lhs = std::make_shared<Dictionary>();
    lhs->setValueForKey(_slots({}, 1 + below(3), 4), "_significantSlots");
    if (below(2)) lhs->setValueForKey(_slots({}, 1 + below(2), 3), "_preContext");
    if (below(2)) lhs->setValueForKey(_slots({}, 1 + below(2), 3), "_postContext");
    auto rule = std::make_shared<Dictionary>();
    rule->setValueForKey(Value::dictionary(lhs), "_lhs");
    rule->setValueForKey(plist("[x]"), "_rhs");
    auto file = std::make_shared<Dictionary>();
    file->setValueForKey(Value::dictionary(rule), "Main");
    return Value::dictionary(file);
  }

  Words phrase() {
    Words words;
    for (std::size_t i = 4 + below(9); i > 0; --i) words.push_back(below(3) ? "a" : "b");
    return words;
  }

 private:
  Value _slots(std::vector<Value> elements, std::size_t count, std::size_t levels) {
    for (; count > 0; --count) {
      const bool repeats = levels > 0 && below(3) > 0;
      elements.push_back(repeats ? _slots({Value::string("*")}, 1 + below(3), levels - 1)
                                 : Value::string(below(3) ? "a" : "b"));
    }
    return Value::array(std::make_shared<Array>(std::move(elements)));
  }

  std::mt19937 _random;
};

TEST_F(CompiledTest, DeepRepetitionsGiveWhatThePlainRecursionGives) {
  const std::uint64_t grammars = fromEnvironment("MARLUNE_GRAMMARS", 300);
  std::uint64_t count = 0, rewritten = 0;
  for (std::uint32_t seed = 1; seed <= grammars; ++seed) {
    RandomRepetitions random(seed);
    const Value file = random.rule();
    reference::Grammar reference(file, "Main");
    compile(PackedList::pack(file, nullptr)->unpacked());
    reference.mostSteps = 3000;
    for (int i = 0; i < 4; ++i) {
      const Words words = random.phrase();
      try {
        const Words expected = reference::Grammar::words(reference.applied(words));
        ASSERT_EQ(compared(words)->stringArray(), expected) << formatted("%@\n%@", {file, words});
        ++count;
        rewritten += expected != words;
      } catch (const reference::Overrun&) {
      }
    }
  }
  EXPECT_GT(count, grammars);
  EXPECT_GT(rewritten, count / 4);
}

TEST_F(CompiledTest, PhrasesWithoutACompiledFormGoThroughTheTree) {
  compile(
      plist("{Main={A={_order=#1; _lhs={_significantSlots=[a]}; _rhs=[b]};"
            "        B={_order=#2; _lhs={_significantSlots=[b]}; _rhs=[c, d]}}}"));
  const auto number = Cell::initWithContentString("a");
  number->setAttribute(AttributeValue::fromPlist(Value::integer(4)), "n");
  const auto comparing = Cell::initWithContentString("b");
  comparing->setAttribute(std::string("x"), "#x-");
  for (const auto& cell : {number, comparing, Cell::initFromPlist(Value::integer(1))}) {
    const auto shared = SimpleSlot::initWithCell(cell);
    const auto phrase = SimpleSlotSequence::initWithArray({shared, SimpleSlot::blank(), shared});
    EXPECT_EQ(detailed(*compiled->appliedTo(*phrase), phrase->slots()),
              detailed(*root->appliedTo(*phrase), phrase->slots()));
  }
}

TEST_F(CompiledTest, PadsLikeTheTree) {
  for (const char* main : {"{}", "{A={_lhs={_significantSlots=[z]}; _rhs=[y]}}",
                           "{_lhs={_significantSlots=[_E]}; _rhs=[]}",
                           "{A={_order=#1; _lhs={_significantSlots=[_E]}; _rhs=[]};"
                           " B={_order=#2; _lhs={_significantSlots=[z]}; _rhs=[]}}"}) {
    SCOPED_TRACE(main);
    compile(plist(std::string("{Main=") + main + "}"));
    for (const Words& words : {Words{}, Words{"a"}, Words{"_E", "a", "_E"}}) {
      compared(words);
      const Phrase bare = SimpleSlotSequence::slotSequenceWithStrings(words);
      EXPECT_EQ(detailed(*compiled->appliedTo(*bare), bare->slots()),
                detailed(*root->appliedTo(*bare), bare->slots()));
    }
  }
}

TEST_F(CompiledTest, RulesThatNeverEndAndPhrasesThatExplodeAreLeftToTheTree) {
  for (const char* rule :
       {"{_repeat=#1; _lhs={_significantSlots=[a, b]}; _rhs=[{_index=#1}, {_index=#0}, a]}",
        "{_repeat=#1; _lhs={_significantSlots=[[+, a, b]]}; _rhs={_signature="
        " [{_index=#0; _attribute=content}]; _expansions={a=[b]; b=[a]}}}",
        "{_repeat=#1; _lhs={_significantSlots=[b]}; _rhs=[b, b]}"}) {
    SCOPED_TRACE(rule);
    compile(plist(std::string("{Main={R=") + rule + "}}"));
    compared({"a", "b", "a"});
    EXPECT_FALSE(HasFailure());
  }
}

// The compiled grammar stops a rule exactly where the tree does.
TEST_F(CompiledTest, LimitsAreThoseOfTheTree) {
  std::string members = "[+, b, a";
  for (int i = 0; i < 3000; ++i) members += ", w" + std::to_string(i);
  Words moving(400, "b");
  moving.front() = "a";
  const struct {
    std::string rule;
    Words words;
  } cases[] = {
      {"{_repeat=#1; _lhs={_significantSlots=[a, b]}; _rhs=[{_index=#1}, {_index=#0}]}", moving},
      {"{_repeat=#1; _lhs={_significantSlots=[" + members + "], c]}; _rhs=[{_index=#0}, b, c]}",
       {"a", "c"}},
      {"{_repeat=#1; _lhs={_significantSlots=[a]}; _rhs=[a, a]}", {"a"}},
      {"{_lhs={_significantSlots=['?']}; _rhs=[{_index=#0}, {_index=#0; post={_index=#0;"
       " _attribute=content}}]}",
       Words(6, std::string(1 << 20, 'a'))},
      {"{_lhs={_significantSlots=['?', '?']}; _rhs=[{_index=#0; post=x}]}", Words(12000, "a")},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.rule.substr(0, 80));
    compile(plist("{Main={R=" + c.rule + "}}"));
    compared(c.words);
  }
}

// Matching that writes lines follows the order of the plain recursion, but only up to a limit.
TEST_F(CompiledTest, RepetitionsThatWriteLinesComeToAnEnd) {
  struct CountingLog : SystemLog {
    void write(std::string_view) noexcept override { ++lines; }
    std::size_t lines = 0;
  };
  const auto counting = std::make_shared<CountingLog>();
  Platform::shared().systemLog = counting;
  std::string slots;
  for (int i = 0; i < 12; ++i) slots += "[*, {#x-=a}], ";
  compile(plist("{Main={_lhs={_significantSlots=[" + slots + "b]}; _rhs=[c]}}"));
  Words words(40, "a");
  EXPECT_EQ(compiled->appliedToStrings(words)->stringArray(), words);
  EXPECT_LT(counting->lines, 2000000u);
  words = {"a", "a", "b", "a", "a", "a", "a", "a", "a", "a", "a", "a", "a", "a", "a"};
  EXPECT_EQ(compiled->appliedToStrings(words)->stringArray(), (Words{"c", "a", "a"}));
}

TEST_F(CompiledTest, AResultOutlivesGrammarAndWords) {
  compile(plist("{Main={_lhs={_significantSlots=[a]}; _rhs=[{_index=#0; post=tail}]}}"));
  auto words = std::make_unique<Words>(Words{"a", "a word that the grammar does not know"});
  const Phrase result = compiled->appliedToStrings(*words);
  compiled = nullptr;
  root = nullptr;
  words = nullptr;
  EXPECT_EQ(result->stringArray(), (Words{"a", "a word that the grammar does not know"}));
  EXPECT_EQ(result->description(), "_E.([a]tail).([a word that the grammar does not know])._E");
}

// A log that uses the grammar while one of its rules writes a line.
TEST_F(CompiledTest, ALogMayAskTheGrammarItself) {
  compile(
      plist("{Main={A={_order=#1; _lhs={_significantSlots=[a]}; _rhs=[b]};"
            "        P={_order=#2; _lhs={_significantSlots=[{#x-=b}]}; _rhs=[c]}}}"));
  struct AskingLog : SystemLog {
    void write(std::string_view) noexcept override {
      if (depth++ == 0) answer = grammar->appliedToStrings({"a", "a", "z"})->stringArray();
    }
    CompiledGrammar* grammar = nullptr;
    int depth = 0;
    Words answer;
  };
  const auto asking = std::make_shared<AskingLog>();
  asking->grammar = compiled.get();
  Platform::shared().systemLog = asking;
  EXPECT_EQ(compiled->appliedToStrings({"z", "a"})->stringArray(), (Words{"z", "c"}));
  EXPECT_EQ(asking->answer, (Words{"c", "c", "z"}));
}

TEST(CompiledAgendaTest, GivesOutInOrderWhatIsAddedOnTheWay) {
  CompiledAgenda agenda;
  agenda.resize(10000);
  for (int round = 0; round < 2; ++round) {
    for (const std::uint32_t rule : {9999u, 0u, 4096u, 63u, 64u, 9999u}) agenda.add(rule);
    EXPECT_EQ(agenda.next(), 0u);
    EXPECT_EQ(agenda.next(), 63u);
    agenda.add(65);
    agenda.add(8191);
    for (const std::uint32_t rule : {64u, 65u, 4096u, 8191u, 9999u, CompiledAgenda::kDone}) {
      EXPECT_EQ(agenda.next(), rule);
    }
  }
}

}  // namespace
}  // namespace marlune
