#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "marlune/grammar/base/grammar_error.h"
#include "marlune/grammar/model/cell.h"
#include "marlune/grammar/model/compound_slot.h"
#include "marlune/grammar/model/disjunction_slot.h"
#include "marlune/grammar/model/kleene_slot.h"
#include "marlune/grammar/model/negation_slot.h"
#include "marlune/grammar/model/rule.h"
#include "marlune/grammar/model/simple_slot.h"
#include "marlune/grammar/model/simple_slot_sequence.h"
#include "marlune/grammar/model/slots_in_context.h"
#include "reference/reference_grammar.h"
#include "support/platform_fixture.h"
#include "support/plist_notation.h"
#include "support/random_grammar.h"

namespace marlune {
namespace {

using Indices = std::vector<std::int32_t>;

class PatternTest : public PlatformFixture {
 protected:
  static std::shared_ptr<SlotSequence> sequence(std::string_view text) {
    return SlotSequence::initFromPlist(plist(text));
  }
};

struct CellCase {
  std::string_view why, pattern, word;
  bool matches;
};
constexpr CellCase kCellCases[] = {
    {"content is compared whole", "five", "fives", false},
    {"attributes not in the pattern are ignored", "{content=five}", "{content=five; post=s}", true},
    {"a missing attribute reads as empty", "{content=five; post=''}", "five", true},
    {"a missing attribute equals no other text", "{post=s}", "five", false},
    {"a wildcard matches a wildcard", "?", "?", true},
    {"a wildcard never matches a blank", "?", "_E", false},
    {"a blank matches nothing else", "_E", "?", false},
    {"a literal without attributes matches a blank", "{}", "_E", true},
    {"a quoted question mark is a word", "{content=?}", "x", false},
    {"a prefix compares as many characters as are between the marks", "{#xx-=tw}", "twenty", true},
    {"and no other", "{#xx-=tw}", "three", false},
    {"marks without characters compare nothing", "{#-=''}", "three", true},
    {"but want content", "{#-=''}", "{post=s}", false},
    {"a suffix", "{-xx#=ty}", "fifty", true},
    {"a suffix that differs", "{-xx#=ty}", "fifteen", false},
    {"a key longer than the content", "{-xxxx#=five}", "ive", false},
    {"characters are UTF-16 units", "{#üü-=üb}", "über", true},
    {"an emoji has two UTF-16 units", "{#xx-=😀}", "😀k", true},
    {"half an emoji equals nothing", "{#x-=😀}", "😀k", false},
    {"a number does not equal text", "{content=#5}", "5", false},
    {"a number equals a number", "{n=#5}", "{n=#5}", true},
    {"a cell from a number is a wildcard", "#5", "x", true},
};

TEST_F(PatternTest, CellsMatch) {
  for (const CellCase& c : kCellCases) {
    SCOPED_TRACE(c.why);
    const auto word = Cell::instanceFromPlist(plist(c.word));
    EXPECT_EQ(Cell::instanceFromPlist(plist(c.pattern))->matches(word.get()), c.matches);
  }
}

TEST_F(PatternTest, APrefixComparisonIsTold) {
  const auto word = Cell::cellWithContentString("twenty");
  Cell::instanceFromPlist(plist("{#xx-=tw; #y-=x}"))->matches(word.get());
  EXPECT_EQ(log->lines(), (std::vector<std::string>{
                              "Prefix! (unsigned long)chars = 2   This: tw    Other: tw", "MATCH!",
                              "Prefix! (unsigned long)chars = 1   This: x    Other: t"}));
}

TEST_F(PatternTest, CellsAreLaidOverCopiedAndPrinted) {
  const auto cell = [](std::string_view text) { return Cell::instanceFromPlist(plist(text)); };
  EXPECT_EQ(
      cell("{content=one; lastTone=H}")->overlayedOn(*cell("{content=1; pre=x}"))->description(),
      "(x[one])H");
  EXPECT_EQ(cell("{post=s}")->overlayedOn(*Cell::blank())->description(), "([_]s)");
  EXPECT_EQ(cell("?")->overlayedOn(*cell("five"))->description(), "([five])");
  EXPECT_EQ(cell("{post=s; content=five}")->flattened(), (std::vector<std::string>{"five", "s"}));

  const auto copied = cell("five");
  copied->copyWithZone()->setContent("six");
  EXPECT_EQ(copied->description(), "([five])");

  const auto bare = cell("#5");  // no dictionary to set anything in
  bare->setContent("x");
  EXPECT_EQ(bare->content(), nullptr);
  EXPECT_EQ(bare->description(), "?");
}

struct OccurrenceCase {
  std::string_view why, pattern, phrase;
  Indices indices;
};
const OccurrenceCase kOccurrences[] = {
    {"overlapping occurrences count", "[x, x]", "[x, x, x]", {0, 1}},
    {"an empty pattern occurs everywhere", "[]", "[x, x]", {0, 1}},
    {"an empty pattern in an empty target", "[]", "[]", {}},
    {"zero repetitions", "[a, [*, b]]", "[a, c]", {0}},
    {"not even zero repetitions at the end", "[a, [*, b]]", "[c, a]", {}},
    {"a repetition leaves words for what follows", "[a, [*, b], b, c]", "[a, b, b, c]", {0}},
    {"the bound counts pattern slots, not words", "[[*, a, [*, b]], c]", "[a, a, a, c]", {2, 3}},
    {"no members, no repetitions", "[[*], a]", "[b, a]", {1}},
    {"alternatives", "[[+, five, six]]", "[five, seven, six]", {0, 2}},
    {"no alternatives", "[[+]]", "[five]", {}},
    {"a negation matches blanks too", "[[~, five]]", "[five, six, _E]", {1, 2}},
    {"a repetition among alternatives never matches", "[[+, [*, a], b]]", "[a, b]", {1}},
};

TEST_F(PatternTest, PatternsOccur) {
  for (const OccurrenceCase& c : kOccurrences) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(sequence(c.pattern)->indicesOfOccurrencesInTarget(*sequence(c.phrase)), c.indices);
  }
  EXPECT_TRUE(log->contains("ERROR: 'matches' method called on KleeneSlot."));
}

const OccurrenceCase kContexts[] = {
    {"both sides",
     "{_preContext=[a]; _significantSlots=[b]; _postContext=[_E]}",
     "[_E, a, b, _E]",
     {2}},
    {"the first word", "{_preContext=[_E]; _significantSlots=[?]}", "[_E, a, b, _E]", {1}},
    {"a context reads backwards",
     "{_preContext=[a, [*, c]]; _significantSlots=[b]}",
     "[_E, a, c, c, b, _E]",
     {4}},
    {"no context matches before the start",
     "{_preContext=[[*, a]]; _significantSlots=[b]}",
     "[b, b]",
     {1}},
    {"the post-context is matched after the pattern's length",
     "{_significantSlots=[a, [*, b]]; _postContext=[c]}",
     "[a, b, b, c, a, x, c]",
     {4}},
    {"no significant slots", "{_preContext=[a]}", "[a, a]", {}},
    {"significant slots that are not an array", "{_significantSlots=a}", "[a, b]", {0, 1}},
    {"nothing at all", "a", "[a]", {}},
};

TEST_F(PatternTest, ContextsAreTested) {
  for (const OccurrenceCase& c : kContexts) {
    SCOPED_TRACE(c.why);
    const auto phrase = SimpleSlotSequence::initFromPlist(plist(c.phrase));
    const auto leftHandSide = SlotsInContext::instanceFromPlist(plist(c.pattern));
    EXPECT_EQ(leftHandSide->indicesOfOccurrencesInTarget(*phrase), c.indices);
  }
  EXPECT_TRUE(log->contains("ERROR: An LHS must have a 'significantSlots' key."));
  EXPECT_TRUE(log->contains("Error!"));
}

TEST_F(PatternTest, SequencesAreReversedAndPrinted) {
  const auto pattern = sequence("[a, [*, b, c], [~, d, [+, ?, _E]]]");
  EXPECT_EQ(pattern->description(), "([a]).(([b]) . ([c]))*.~(([d]) + (? + _E))");
  EXPECT_EQ(pattern->reversed()->description(), "~((_E + ?) + ([d])).(([c]) . ([b]))*.([a])");
  EXPECT_EQ(pattern->reversed()->slots().back(), pattern->first());
  EXPECT_EQ(Slot::instanceFromPlist(plist("[?]")), nullptr);
  EXPECT_THROW(Slot::instanceFromPlist(plist("[]")), GrammarError);
}

TEST_F(PatternTest, PartsMadeByHandDoWhatThoseOfAFileDo) {
  const auto word = [](std::string text) {
    return SimpleSlot::simpleSlotWithCell(Cell::cellWithContentString(std::move(text)));
  };
  const SlotArray slots = {DisjunctionSlot::disjunctionSlotWithArray({word("a"), word("b")}),
                           NegationSlot::negationSlotWithArray({word("c")}),
                           KleeneSlot::kleeneSlotWithArray({word("d")})};
  EXPECT_EQ(SlotSequence::initWithArray(slots)->description(),
            sequence("[[+, a, b], [~, c], [*, d]]")->description());
  const auto rule = Rule::initWithLeftHandSide(
      SlotsInContext::initWithArraysForSignificantSlots({slots[0]}, std::nullopt,
                                                        SlotArray{slots[1]}),
      SimpleSlotSequence::slotSequenceWithStrings({"x"}),
      std::make_shared<NewProduction::Indices>(NewProduction::Indices{-1}));
  const auto phrase = SimpleSlotSequence::slotSequenceWithStrings({"a", "c", "b", "d"});
  EXPECT_EQ(rule->appliedTo(*phrase)->description(), "_E.([a]).([c]).([x]).([d])._E");
}

TEST_F(PatternTest, AbstractPartsTellThatTheyWereAsked) {
  struct BareSlot : Slot {};
  struct BareCompound : CompoundSlot {
    BareCompound() : CompoundSlot(SlotSequence::initWithArray({})) {}
  };
  struct BarePart : GrammarPart {};
  const auto target = SimpleSlotSequence::slotSequenceWithStrings({"a"});
  BareCompound compound;
  EXPECT_EQ(Slot::initFromPlist(Value::string("a")), nullptr);
  EXPECT_FALSE(BareSlot().matches(*target));
  EXPECT_FALSE(compound.matches(*target));
  EXPECT_EQ(compound.description(), "");
  EXPECT_EQ(compound.reversed(), nullptr);
  EXPECT_FALSE(KleeneSlot::kleeneSlotWithArray({})->matches(*target));
  EXPECT_EQ(GenericProduction::initFromPlist(Value()), nullptr);
  EXPECT_EQ(GenericProduction::instanceFromPlist(Value()), nullptr);
  EXPECT_EQ(BarePart().appliedTo(*target), nullptr);
  EXPECT_THAT(
      log->lines(),
      testing::ElementsAre(
          "ERROR: 'initFromPlist' method called on Slot which is an Abstract Class. Try using "
          "'instanceFromPlist' instead.",
          "ERROR: 'matches' method called on Slot which is an Abstract Class.",
          "ERROR: 'matches' method called on CompoundSlot, which is an abstract class.",
          "ERROR: 'description' method called on CompoundSlot, which is an abstract class.",
          "ERROR: 'reversed' method called on CompoundSlot, which is an abstract class.",
          "ERROR: 'matches' method called on KleeneSlot.",
          "ERROR: 'initFromPlist' method called on CompoundSlot, which is an abstract class.",
          "ERROR: 'instanceFromPlist' method called on CompoundSlot, which is an abstract class.",
          "ERROR: Method 'appliedTo:' called on abstract class GrammarPart."));
}

TEST_F(PatternTest, PortionsEndWhereTheSequenceEnds) {
  const auto phrase = sequence("[a, b, c]");
  const auto two = sequence("[x, x]");
  EXPECT_EQ(phrase->occurrenceOfSequence(*two, 1)->description(), "([b]).([c])");
  EXPECT_EQ(phrase->occurrenceOfSequence(*two, 2), nullptr);
  EXPECT_EQ(phrase->portionFollowingOccurrenceOfSequence(*two, 1)->count(), 0u);
  EXPECT_EQ(phrase->portionFollowingOccurrenceOfSequence(*two, 2), nullptr);
  EXPECT_EQ(phrase->portionPrecedingOccurrenceOfSequence(*two, 3)->count(), 3u);
  EXPECT_THROW(phrase->portionPrecedingOccurrenceOfSequence(*two, 4), std::out_of_range);
  EXPECT_THROW(phrase->subsequenceFromIndex(4), std::out_of_range);
  EXPECT_THROW(SimpleSlotSequence::emptySlotSequence()->first(), std::out_of_range);
}

TEST_F(PatternTest, PhrasesArePadded) {
  for (const auto& [phrase, padded] :
       std::vector<std::pair<std::string_view, std::string_view>>{{"[]", "_E._E"},
                                                                  {"[_E]", "_E._E"},
                                                                  {"[w]", "_E.([w])._E"},
                                                                  {"[w, _E]", "_E.([w])._E"},
                                                                  {"[_E, w, _E]", "_E.([w])._E"}}) {
    EXPECT_EQ(SimpleSlotSequence::initFromPlist(plist(phrase))->pad().description(), padded);
  }
}

TEST_F(PatternTest, AnyNestingOfRepetitionsMatchesAsThePlainRecursionDoes) {
  int compared = 0;
  int matched = 0;
  reference::Grammar reference(plist("{Main={}}"), "Main");
  reference.mostSteps = 20000;
  for (std::uint64_t seed = 1; seed <= 3000; ++seed) {
    SCOPED_TRACE(seed);
    RandomGrammar random(seed);
    const auto nested = [&random](auto& self, int levels) -> std::string {
      if (levels == 0 || random.chance(3))
        return random.chance(4) ? "?" : random.chance(2) ? "a" : "b";
      std::string text = "[*";
      for (std::size_t i = random.below(3) + 1; i > 0; --i) text += ", " + self(self, levels - 1);
      return text + "]";
    };
    std::string pattern = "[" + nested(nested, 4);
    for (std::size_t i = random.below(4); i > 0; --i) pattern += ", " + nested(nested, 3);
    pattern += "]";
    std::string target = "[a";
    for (std::size_t i = random.below(7); i > 0; --i) target += random.chance(2) ? ", a" : ", b";
    target += random.chance(2) ? ", _E]" : "]";
    bool expected = false;
    try {
      reference.restartSteps();
      expected = reference.matches(reference::slotsFrom(plist(pattern)),
                                   reference::slotsFrom(plist(target)));
    } catch (const reference::Overrun&) {
      continue;
    }
    ASSERT_EQ(sequence(pattern)->matches(*sequence(target)), expected) << pattern << " " << target;
    ++compared;
    matched += expected ? 1 : 0;
  }
  EXPECT_GT(compared, 2500);
  EXPECT_GT(matched, compared / 10);
  EXPECT_LT(matched, compared * 9 / 10);
}

// The plain recursion would take longer than the age of the universe.
TEST_F(PatternTest, ManyRepetitionsTakePolynomialTime) {
  const auto phrase =
      SimpleSlotSequence::slotSequenceWithStrings(std::vector<std::string>(200, "a"));
  std::string successive;
  for (int i = 0; i < 20; ++i) successive += "[*, a], ";
  for (const std::string& pattern :
       {"[" + successive + "z]", std::string("[[*, [*, [*, [*, [*, [*, a]]]]]], z]")}) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(sequence(pattern)->indicesOfOccurrencesInTarget(*phrase), Indices());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5)) << pattern;
  }
}

}  // namespace
}  // namespace marlune
