#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "marlune/grammar/model/conditional_production.h"
#include "marlune/grammar/model/grammar_part.h"
#include "marlune/grammar/model/new_production.h"
#include "marlune/grammar/model/rule.h"
#include "marlune/grammar/model/simple_slot_sequence.h"
#include "support/platform_fixture.h"
#include "support/plist_notation.h"

namespace marlune {
namespace {

class RewritingTest : public PlatformFixture {
 protected:
  // The printed result of applying a part of a grammar to a phrase.
  static std::string rewritten(std::string_view part, std::string_view phrase) {
    return GrammarPart::instanceFromPlist(plist(part))
        ->appliedTo(*SimpleSlotSequence::initFromPlist(plist(phrase)))
        ->description();
  }
};

struct RuleCase {
  std::string_view why, rule, phrase, result;
};
const RuleCase kRules[] = {
    {"a new slot after a kept one", "{_lhs={_significantSlots=[a]}; _rhs=[{_index=#0}, b]}",
     "[a, c]", "_E.([a]).([b]).([c])._E"},
    {"later occurrences move with the phrase", "{_lhs={_significantSlots=[a]}; _rhs=[]}",
     "[a, x, a]", "_E.([x])._E"},
    {"overlapping occurrences rewrite the current phrase",
     "{_lhs={_significantSlots=[a, a]}; _rhs=[b]}", "[a, a, a, c]", "_E.([b]).([c])._E"},
    {"an attribute of another slot",
     "{_lhs={_significantSlots=[?, b]}; "
     "_rhs=[{_index=#1.9; pre={_index=#0; _attribute=content}; post={_index=#0; _attribute=g}}]}",
     "[{content=a; g=s}, b]", "_E.(a[b]s)._E"},
    {"a missing attribute is set to the empty text",
     "{_lhs={_significantSlots=[b]}; _rhs=[{_index=#0; content={_index=#0; _attribute=g}}]}", "[b]",
     "_E.([])._E"},
    {"an overlay turns a wildcard into a literal",
     "{_lhs={_significantSlots=[?]}; _rhs=[{_index=#0}]}", "[?]", "_E.([_])._E"},
    {"reading a production stops at a dictionary without an index",
     "{_lhs={_significantSlots=[a]}; _rhs=[b, #7, {content=c}, d]}", "[a]", "_E.([b])._E"},
    {"an index outside the occurrence leaves it unchanged",
     "{_lhs={_significantSlots=[a]}; _rhs=[{_index=#1}]}", "[a]", "_E.([a])._E"},
    {"without a right-hand side nothing changes", "{_lhs={_significantSlots=[a]}}", "[a]",
     "_E.([a])._E"},
    {"a Kleene slot's occurrence is as long as its pattern",
     "{_lhs={_significantSlots=[a, [*, b]]}; _rhs=[x]}", "[a, c, d]", "_E.([x]).([d])._E"},
    {"an occurrence that no longer fits removes the phrase's end",
     "{_lhs={_significantSlots=[a, [*, b], [*, c]]}; _rhs=[x]}", "[a]", "_E.([x])"},
    {"a repeating rule restores the blanks that its last pass removed",
     "{_lhs={_significantSlots=[a, [*, b]]}; _rhs=[a]; _repeat=#1}", "[a]", "_E.([a])._E"},
    {"a single pass", "{_lhs={_significantSlots=[a, a]}; _rhs=[a]; _repeat=YES}", "[a, a, b, a, a]",
     "_E.([a]).([b]).([a])._E"},
    {"repeats until nothing changes", "{_lhs={_significantSlots=[a, b]}; _rhs=[b]; _repeat=#true}",
     "[a, a, a, b]", "_E.([b])._E"},
    {"an additional attribute is not a change",
     "{_lhs={_significantSlots=[a]}; _rhs=[{_index=#0; post={_index=#0; _attribute=pre}}]; "
     "_repeat=#1}",
     "[{content=a; pre=x}]", "_E.(x[a]x)._E"},
    {"a directory runs by order",
     "{X={_order=#5; _lhs={_significantSlots=[b]}; _rhs=[c]}; "
     "Y={_order=#-1; _lhs={_significantSlots=[a]}; _rhs=[b]}}",
     "[_E, a, _E]", "_E.([c])._E"},
};

TEST_F(RewritingTest, RulesRewrite) {
  for (const RuleCase& c : kRules) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(rewritten(c.rule, c.phrase), c.result);
  }
  EXPECT_TRUE(log->contains(
      "ERROR: The occurrence at 1 stays as it is: production's index 1 outside the 1 slots of the "
      "occurrence."));
}

TEST_F(RewritingTest, AConditionalProductionIsChosenAfreshEverywhere) {
  const std::string_view rule =
      "{_lhs={_significantSlots=[[+, {content=x}], ?]}; _rhs={_delimiter=-; "
      "_signature=[{_index=#0; _attribute=g}, {_index=#1; _attribute=content}]; "
      "_expansions={f-one=[une]; one=[un]; two=none}}}";
  EXPECT_EQ(rewritten(rule, "[{content=x; g=f}, one, x, one, x, three, x, two]"),
            "_E.([une]).([un]).([x]).([three])._E");
}

TEST_F(RewritingTest, TheTraceHasTheseLines) {
  const auto grammar = GrammarPart::instanceFromPlist(
      plist("{A={_lhs={_preContext=[[*, [+, x, y]]]; _significantSlots=[a]};"
            " _rhs=[{_index=#0; p='1'; q={_index=#0; _attribute=content}}]};"
            " B={_order=#1; _lhs={_significantSlots=[[~, a]]}; _rhs=[]}}"));
  preferences->set(ZKPlistNotificationDefault, Value::boolean(true));
  log->clear();
  grammar->appliedTo(*SimpleSlotSequence::blankBufferedSlotSequenceWithStrings({"a", "b"}));
  EXPECT_THAT(log->lines(),
              testing::ElementsAre(
                  "Buffered slots: (\n    _E,\n    \"([a])\",\n    \"([b])\",\n    _E\n)", " ",
                  "Applying 'A' (0): \n  preContext: ((([x]) + ([y])))* \n significant: ([a]) \n "
                  "postContext: ",
                  "    indicesOfOccurences: 1", "No Substitution required!", "Substitution!",
                  "\t\treceiver: ([a])", "\t\tbefore overlay: ([a])", "\t\t\tattributeName: p",
                  "\t\t\tattributeName: q", "\t\tafter overlay: ([a])", "targetAtStart:",
                  "modifiedTarget:", "_E.([a]).([b])._E", "Midway Result: _E.([a]).([b])._E", " ",
                  "Applying 'B' (1): \n  preContext:  \n significant: ~(([a])) \n postContext: ",
                  "    indicesOfOccurences: 0, 2, 3", "targetAtStart:", "modifiedTarget:", "([a])",
                  "Midway Result: ([a])"));
}

TEST_F(RewritingTest, ARuleThatNeverEndsIsStopped) {
  EXPECT_EQ(rewritten("{__name=Flip; _lhs={_significantSlots=[[+, a, b]]}; _repeat=#1; "
                      "_rhs={_signature=[{_index=#0; _attribute=content}]; "
                      "_expansions={a=[b]; b=[a]}}}",
                      "[a]"),
            "_E.([a])._E");
  EXPECT_TRUE(log->contains(
      "ERROR: The repeating rule 'Flip' stopped after 2 passes: the phrase came back to what it "
      "had been."));
}

// Counts: each pass adds one to the binary number after "t", lowest digit first; "c" is the digit 0
// with a carry.
TEST_F(RewritingTest, ARuleThatTakesTooManyPassesIsStopped) {
  const auto rule = plist(
      "{__name=Count; _lhs={_significantSlots=['?', '?']}; _repeat=#1; _rhs={"
      "_signature=[{_index=#0; _attribute=content}, {_index=#1; _attribute=content}]; "
      "_expansions={'t 0'=[t, 1]; 't 1'=[t, c]; 'c 0'=[0, 1]; 'c 1'=[0, c]}}}");
  std::vector<std::string> words(15, "0");
  words.front() = "t";
  const auto phrase = GrammarPart::instanceFromPlist(rule)->appliedTo(
      *SimpleSlotSequence::slotSequenceWithStrings(words));
  EXPECT_THAT(phrase->stringArray(), testing::ElementsAre("t", "0", "0", "0", "0", "1", "0", "0",
                                                          "0", "1", "1", "1", "0", "0", "1"));
  EXPECT_TRUE(log->contains(
      "ERROR: The repeating rule 'Count' stopped after 10000 passes, although each had changed the "
      "phrase."));
}

// Stops long before the limit of passes, because a disjunction counts all its members.
TEST_F(RewritingTest, ARuleThatMakesMoreAndMoreWorkIsStopped) {
  constexpr int kPasses = 403;
  std::string members = "[+, b, a";
  for (int i = 0; i < 3000; ++i) members += ", w" + std::to_string(i);
  const auto rule = plist("{__name=Grow; _lhs={_significantSlots=[" + members +
                          "], c]}; _rhs=[{_index=#0}, b, c]; _repeat=#1}");
  const auto phrase = GrammarPart::instanceFromPlist(rule)->appliedTo(
      *SimpleSlotSequence::slotSequenceWithStrings({"a", "c"}));
  EXPECT_EQ(phrase->count(), kPasses + 4u);
  EXPECT_TRUE(
      log->contains(formatted("ERROR: The repeating rule 'Grow' stopped after %i passes, although "
                              "each had changed the phrase.",
                              {kPasses})));
}

// A word moves from the first position to the last, one position per pass.
TEST_F(RewritingTest, ARuleThatSettlesAfterAThousandPassesIsNotStopped) {
  struct CountingLog : SystemLog {
    void write(std::string_view line) noexcept override { errors += line.starts_with("ERROR"); }
    int errors = 0;
  };
  const auto counting = std::make_shared<CountingLog>();
  Platform::shared().systemLog = counting;
  std::vector<std::string> words(1001, "b");
  words.front() = "a";
  const auto phrase = SimpleSlotSequence::slotSequenceWithStrings(words);
  std::swap(words.front(), words.back());
  for (const std::string_view slot : {"a", "{#x-=a}", "{-x#=a}"}) {
    const auto rule = plist("{_lhs={_significantSlots=[" + std::string(slot) +
                            ", b]}; _rhs=[{_index=#1}, {_index=#0}]; _repeat=#1}");
    EXPECT_EQ(GrammarPart::instanceFromPlist(rule)->appliedTo(*phrase)->stringArray(), words)
        << slot;
  }
  EXPECT_EQ(counting->errors, 0);
}

TEST_F(RewritingTest, APhraseStopsGrowingWithOneLine) {
  const std::vector<std::string> many(6000, "a"), longOnes(10, std::string(1 << 20, 'a'));
  const struct {
    const char* rule;
    const std::vector<std::string>& words;
    std::size_t count;
    const char* line;
  } cases[] = {
      {"{_lhs={_significantSlots=[a]}; _rhs=[a, a]}", many, 10000,
       "ERROR: The phrase would grow past 10000 words and is left as it is."},
      {"{_lhs={_significantSlots=[a]}; _rhs=[a, a]; _repeat=#1}", many, 10000,
       "ERROR: The phrase would grow past 10000 words and is left as it is."},
      {"{_lhs={_significantSlots=['?']}; _rhs=[{_index=#0}, {_index=#0; content={_index=#0;"
       " _attribute=content}}]}",
       longOnes, 17,
       "ERROR: The phrase would grow past 16777216 bytes of text and is left as it is."},
      {"{_lhs={_significantSlots=['?']}; _repeat=#1; _rhs=[{_index=#0},"
       " {post={_index=#0; _attribute=content}; _index=#-1}]}",
       longOnes, 17,
       "ERROR: The phrase would grow past 16777216 bytes of text and is left as it is."},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.rule);
    log->clear();
    const auto phrase = GrammarPart::instanceFromPlist(plist(c.rule))
                            ->appliedTo(*SimpleSlotSequence::slotSequenceWithStrings(c.words));
    EXPECT_EQ(phrase->count(), c.count);
    EXPECT_THAT(log->lines(), testing::ElementsAre(c.line));
  }
}

TEST_F(RewritingTest, AChoiceByLongValuesTakesNoMemoryForThem) {
  std::string keys = "{_index=#0; _attribute=content}";
  for (int i = 0; i < 63; ++i) keys += ", {_index=#0; _attribute=content}";
  const auto choice = ConditionalProduction::initFromPlist(
      plist("{_signature=[" + keys + "]; _expansions={k=[a]; 'k k'=[b]}}"));
  const auto phrase = SimpleSlotSequence::slotSequenceWithStrings({std::string(1 << 20, 'k')});
  const std::string key = choice->keyForOccurrence(phrase.get());
  EXPECT_LT(key.size(), 10000u);
  EXPECT_EQ(choice->expansionForKey(key), nullptr);
}

TEST_F(RewritingTest, ASequenceReplacesASequence) {
  const auto phrase = SimpleSlotSequence::slotSequenceWithStrings({"one", "1", "one"});
  const auto result = phrase->sequenceByReplacingOccurencesOfSequence(
      *SimpleSlotSequence::slotSequenceWithStrings({"one"}),
      SimpleSlotSequence::initFromPlist(plist("[?, {pre=x}]")));
  EXPECT_EQ(result->description(), "_E.([_]).(x[_]).([1]).([_]).(x[_])._E");
}

TEST_F(RewritingTest, ProductionsPrint) {
  EXPECT_EQ(NewProduction::instanceFromPlist(plist("[km, {_index=#1; post=s}]"))->description(),
            "\n\t indices: (\n    -1,\n    1\n) \n\t overlays: ([km]).([_]s)");
  EXPECT_EQ(NewProduction::instanceFromPlist(plist("km"))->description(),
            "\n\t indices: (null) \n\t overlays: (null)");
  EXPECT_EQ(ConditionalProduction::initFromPlist(plist("{_expansions={k=[]}}"))->description(),
            "\n k: \n\t indices: (\n) \n\t overlays: ");
}

TEST_F(RewritingTest, ARuleWithoutSidesIsBuiltAndTold) {
  EXPECT_EQ(Rule::initFromPlist(plist("{_order=#1}"))->description(), "\nROOT: RULE");
  EXPECT_EQ(log->lines(), (std::vector<std::string>{"ERROR!", "ERROR!"}));
}

TEST_F(RewritingTest, AnAttributeKeyWantsANumberAndAName) {
  EXPECT_EQ(AttributeKey::instanceFromPlist(plist("{_index=#2.9; _attribute=g}"))->index(), 2);
  EXPECT_EQ(AttributeKey::instanceFromPlist(plist("{_index=2; _attribute=g}")), nullptr);
  EXPECT_EQ(AttributeKey::instanceFromPlist(plist("[]")), nullptr);
  EXPECT_EQ(log->lines(),
            (std::vector<std::string>{
                "ERROR: AttributeKey expected two entries, a Number '_index' and a String "
                "'_attribute'.",
                "ERROR: AttributeKey expected a dictionary. Found a array."}));
}

}  // namespace
}  // namespace marlune
