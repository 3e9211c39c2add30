#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "fakes/fake_property_list_reader.h"
#include "marlune/grammar/base/grammar_error.h"
#include "marlune/grammar/file/packed_list.h"
#include "marlune/grammar/model/directory.h"
#include "marlune/grammar/model/grammar_objects.h"
#include "marlune/grammar/model/rule.h"
#include "marlune/grammar/parser.h"
#include "support/platform_fixture.h"
#include "support/plist_notation.h"

namespace marlune {
namespace {

using Words = std::vector<std::string>;

constexpr std::string_view kUnits = "{_order=#1; _lhs={_significantSlots=[km]}; _rhs=[kilometers]}";

class LoadingTest : public PlatformFixture {
 protected:
  void SetUp() override {
    PlatformFixture::SetUp();
    Platform::shared().propertyListReader = reader;
  }

  // A file unique to the test, since the cache keeps every file.
  std::string file(std::string_view text) {
    const std::string path =
        std::string(testing::UnitTest::GetInstance()->current_test_info()->name()) +
        std::to_string(reader->files.size());
    reader->files[path] = plist(text);
    return path;
  }

  // The message of the loading error; "" when there is none.
  std::string errorOf(std::string_view text, std::string_view grammar = "Main") {
    try {
      Parser::initWithPlistAtPath(file(text), grammar);
    } catch (const GrammarError& error) {
      return error.what();
    }
    return "";
  }

  const std::shared_ptr<FakePropertyListReader> reader = std::make_shared<FakePropertyListReader>();
};

TEST_F(LoadingTest, AWordOfAnInsertedRuleIsRewritten) {
  const auto parser = Parser::initWithPlistAtPath(
      file("{Main={Units='#insert Shared.Units 1'}; Shared={Units=" + std::string(kUnits) + "}}"),
      "Main");
  EXPECT_EQ(parser->resultOfRulesAppliedToStrings({"ten", "km"})->stringArray(),
            (Words{"ten", "kilometers"}));
}

struct BrokenFile {
  std::string_view why, file, message;
};
const BrokenFile kBrokenFiles[] = {
    {"a missing chunk", "{Main={U='#insert Shared.No'}; Shared={}}",
     "Main.U: an insert directive whose path 'Shared.No' leads to nothing"},
    {"two blanks name the empty path", "{Main={U='#insert  Shared'}; Shared={}}",
     "Main.U: an insert directive whose path '' leads to nothing"},
    {"no path", "{Main={U=#insert}}", "Main.U: an insert directive without a path"},
    {"a look-up in a string", "{Main={U='#insert Word.x'}; Word=five}",
     "Main.U: a path that looks up 'x' in a value that is not a dictionary: string"},
    {"a chunk that inserts itself", "{Main={A={U='#insert Main'}}}",
     "Main.A.U: inserts go in a circle: Main.A.U inserts Main"},
    {"a circle of two", "{Main={}; A={x='#insert B'}; B={y={z='#insert A 3'}}}",
     "A.x: inserts go in a circle: A.x inserts B, B.y.z inserts A"},
    {"a circle of directives only", "{Main={}; A='#insert B'; B='#insert A'}",
     "A: inserts go in a circle: A inserts B, B inserts A"},
    {"a non-slot array", "{Main={R={_lhs={_significantSlots=[a, [+, b, [c]]]}; _rhs=[]}}}",
     "Main.R._lhs._significantSlots[1][2]: an array that is not a slot: "
     "it does not begin with *, + or ~"},
    {"an empty slot array", "{Main={R={_lhs={_preContext=[[]]}}}}",
     "Main.R._lhs._preContext[0]: an empty array where a slot is expected"},
    {"an overlay's attribute key", "{Main={R={_lhs={}; _rhs=[a, {_index=#0; content={}}]}}}",
     "Main.R._rhs[1].content: an attribute key without its index or its name"},
    {"a signature's attribute key", "{Main={R={_lhs={}; _rhs={_signature=[x]}}}}",
     "Main.R._rhs._signature[0]: an attribute key without its index or its name"},
};

TEST_F(LoadingTest, ABrokenFileIsToldWithThePlaceInIt) {
  for (const BrokenFile& broken : kBrokenFiles) {
    SCOPED_TRACE(broken.why);
    EXPECT_EQ(errorOf(broken.file), broken.message);
  }
  EXPECT_TRUE(log->contains("\n\n ERROR: No plist chunk found at path 'Shared.No'."));
}

TEST_F(LoadingTest, ANameThatLooksIntoAWordIsAnError) {
  EXPECT_EQ(errorOf("{Main=five}", "Main.x"),
            "Main.x: a path that looks up 'x' in a value that is not a dictionary: string");
}

TEST_F(LoadingTest, InsertsThatExplodeAreRefused) {
  std::string text = "{Main={}; L0={w=x}";
  for (int level = 1; level <= 40; ++level) {
    const std::string insert = "'#insert L" + std::to_string(level - 1) + "'";
    text += "; L" + std::to_string(level) + "={a=" + insert + "; b=" + insert + "}";
  }
  EXPECT_THAT(errorOf(text + "}"), testing::HasSubstr("the grammar file grows past"));
}

TEST_F(LoadingTest, ADeepFileIsRefused) {
  std::string text = "x";
  for (int level = 0; level < 300; ++level) text = "{k=" + text + "}";
  EXPECT_THAT(errorOf("{Main=" + text + "}"), testing::HasSubstr("nested deeper than 256 levels"));
}

TEST_F(LoadingTest, InsertsCopyOneLevelAndTakeTheirOrder) {
  const Value tree = Parser::loadGrammarsFromPlistAtPath(
      file("{Main={A='#insert S.A 7'; B='#insert S.A -2'; C='#insertX S.C'; D=['#insert S.A'];"
           " E='#insert S.A 0'}; S={A={_order=#5; n={x=y}}; C={in='#insert S.A 3x'}}}"));
  EXPECT_EQ(formatted("%@", {tree}),
            formatted("%@", {plist("{Main={A={_order=#7; n={x=y}}; B={_order=#5; n={x=y}};"
                                   " C={in={_order=#3; n={x=y}}}; D=['#insert S.A'];"
                                   " E={_order=#0; n={x=y}}}; S={A={_order=#5; n={x=y}}; "
                                   "C={in={_order=#3; n={x=y}}}}}")}));
  const auto nested = [&tree](std::string_view path) {
    return Parser::retrievePlistForStringInDotNotation(path, tree).asDictionary();
  };
  EXPECT_EQ(nested("Main.A.n"), nested("S.A.n"));
  EXPECT_NE(nested("Main.A"), nested("S.A"));
  const std::vector<std::string> keys = {"Main", "A", "n"};
  EXPECT_EQ(Parser::retrievePlistForPathArray(keys, tree).asDictionary(), nested("Main.A.n"));
  EXPECT_EQ(Parser::retrievePlistForPathArray(std::nullopt, tree).asDictionary(),
            tree.asDictionary());
  EXPECT_THROW(Parser::retrievePlistForPathArray(std::vector<std::string>(), tree),
               std::out_of_range);
}

TEST_F(LoadingTest, AFileIsReadOnceAndABrokenOneAgain) {
  const std::string path = file("{Main={}; Other={}}");
  const auto one = Parser::initWithPlistAtPath(path, "Main");
  const auto two = Parser::initWithPlistAtPath(path, "Other");
  EXPECT_EQ(one->grammarsPlist().asDictionary(), two->grammarsPlist().asDictionary());
  EXPECT_EQ(reader->reads, 1);
  EXPECT_THROW(Parser::initWithPlistAtPath(file("{Main={U='#insert'}}"), "Main"), GrammarError);
  const std::string broken = file("{Main={U='#insert'}}");
  for (int i = 0; i < 2; ++i)
    EXPECT_THROW(Parser::loadGrammarsFromPlistAtPath(broken), GrammarError);
  EXPECT_EQ(reader->reads, 4);
}

// Different parsers need no lock of the caller's. The thread sanitizer reports missing locks
// inside.
TEST_F(LoadingTest, ParsersAreMadeAndUsedOnSeveralThreadsAtOnce) {
  constexpr int kThreads = 4, kRounds = 20;
  const std::string shared = file(
      "{Main={A='#insert Shared.Units 2'; R={_order=#1; _lhs="
      "{_significantSlots=[{#xx-=te}]}; _rhs=[many]}}; Shared={Units=" +
      std::string(kUnits) + "}}");
  std::array<std::vector<std::string>, kThreads> own;
  for (auto& paths : own) {
    for (int i = 0; i < kRounds; ++i) paths.push_back(file("{Main=" + std::string(kUnits) + "}"));
  }
  const auto work = [&shared](const std::vector<std::string>& paths, int& right) {
    for (const std::string& path : paths) {
      const auto parser = Parser::initWithPlistAtPath(shared, "Main");
      const auto other = Parser::initWithPlistAtPath(path, "Main");
      const bool isAbsent =
          Parser::initWithPlistAtPath("/nowhere", "Main")->theGrammar() == nullptr;
      const Words ours = parser->resultOfRulesAppliedToStrings({"ten", "km"})->stringArray();
      const Words theirs = other->resultOfRulesAppliedToStrings({"ten", "km"})->stringArray();
      right += isAbsent && ours == Words{"many", "kilometers"} &&
               theirs == Words{"ten", "kilometers"} &&
               parser->theGrammar()->description() == "\nROOT: \n\tR: RULE\n\tA: RULE";
    }
  };
  std::array<int, kThreads> right{};
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back(work, std::cref(own[static_cast<std::size_t>(i)]),
                         std::ref(right[static_cast<std::size_t>(i)]));
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_THAT(right, testing::Each(kRounds));
  EXPECT_EQ(reader->reads, 1 + kThreads * kRounds * 2) << "each file is read once";
}

TEST_F(LoadingTest, WithoutAGrammarTheAnswerIsAbsent) {
  const auto unreadable = Parser::initWithPlistAtPath("/nowhere", "Main");
  EXPECT_TRUE(log->contains("ERROR loading grammar from plist: no file at /nowhere"));
  EXPECT_EQ(unreadable->resultOfRulesAppliedToStrings({"a"}), nullptr);
  const auto parser = Parser::initWithPlistAtPath(file("{Main={}; Word=x}"), "No.Such");
  EXPECT_EQ(parser->resultOfRulesAppliedToStrings({"a"}), nullptr);
  parser->setGrammar("Word");
  EXPECT_EQ(parser->resultOfRulesAppliedToStrings({"a"}), nullptr);
  parser->setGrammar("Main");
  EXPECT_EQ(parser->resultOfRulesAppliedToStrings({"a"})->stringArray(), Words{"a"});
}

TEST_F(LoadingTest, SaysWhyThereIsNoGrammar) {
  using Kind = Failure::Kind;
  EXPECT_EQ(Parser::initWithPlistAtPath("/nowhere", "Main")->whyNoGrammar(),
            (Failure{Kind::unreadable, "no file at /nowhere"}));
  const auto parser = Parser::initWithPlistAtPath(
      file("{Main={Units={}; Text=x}; Mains={}; Man={}; Min={}; Other={}; Mien=x;"
           " Broken={Rule={_lhs={_significantSlots=[[]]}}}}"),
      std::nullopt);
  EXPECT_EQ(parser->whyNoGrammar(), std::nullopt);
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"Mian", "there is no grammar named Mian; did you mean Man, Min or Main?"},
      {"Main.Unit", "there is no grammar named Main.Unit; did you mean Main.Units?"},
      {"Main.Text", "there is no grammar named Main.Text"},
      {"Elsewhere", "there is no grammar named Elsewhere"},
      {"", "there is no grammar named "},
  };
  for (const auto& [name, message] : cases) {
    parser->setGrammar(name);
    EXPECT_EQ(parser->whyNoGrammar(), (Failure{Kind::unknownName, std::string(message)}));
  }
  EXPECT_THROW(parser->setGrammar("Broken"), GrammarError);
  EXPECT_EQ(parser->whyNoGrammar()->kind, Kind::malformed);
  EXPECT_THAT(parser->whyNoGrammar()->message, testing::StartsWith("Broken.Rule._lhs"));
  parser->setGrammar("Main");
  EXPECT_EQ(parser->whyNoGrammar(), std::nullopt);
  EXPECT_THROW(parser->setGrammar("Broken"), GrammarError);
  EXPECT_EQ(parser->whyNoGrammar(), std::nullopt) << "it keeps its grammar";
}

TEST_F(LoadingTest, SaysWhyAPhraseIsUnfinished) {
  const auto parser = Parser::initWithPlistAtPath(
      file("{Grow={__name=Grow; _lhs={_significantSlots=[a]}; _rhs=[a, a]; _repeat=#1};"
           " Flip={__name=Flip; _lhs={_significantSlots=[[+, a, b]]}; _repeat=#1;"
           " _rhs={_signature=[{_index=#0; _attribute=content}]; _expansions={a=[b]; b=[a]}}}}"),
      "Grow");
  for (const bool isTraced : {false, true}) {
    preferences->set(ZKPlistNotificationDefault, Value::boolean(isTraced));
    parser->setGrammar("Grow");
    parser->resultOfRulesAppliedToStrings({"a"});
    EXPECT_EQ(parser->whyUnfinished(),
              (Failure{Failure::Kind::tooLarge, "the phrase would grow past 10000 words"}));
    EXPECT_EQ(parser->ruleLeftUnfinished(), "Grow");
    parser->resultOfRulesAppliedToStrings({"b"});
    EXPECT_EQ(parser->whyUnfinished(), std::nullopt);
    parser->setGrammar("Flip");
    parser->resultOfRulesAppliedTo(*SimpleSlotSequence::slotSequenceWithStrings({"b"}));
    EXPECT_EQ(parser->whyUnfinished(),
              (Failure{Failure::Kind::endless, "the repeating rule Flip would not end"}));
    EXPECT_EQ(parser->ruleLeftUnfinished(), "Flip");
  }
}

TEST_F(LoadingTest, TheTreePrintsByOrderThenName) {
  preferences->set(ZKPlistNotificationDefault, Value::boolean(true));
  Parser::initWithPlistAtPath(
      file("{Main={_order=#0; B={_lhs={}; _rhs=[]; _order=#2; Deep={}}; Z={_order=#-1; In={}}; "
           "A={_order=#2}; note=x}}"),
      "Main");
  EXPECT_TRUE(
      log->contains("productionRules for Main: \nROOT: \n\tZ: \n\t\tIn: \n\tA: \n\tB: RULE"));
  EXPECT_TRUE(log->contains(
      "WARNING: GrammarPart expected a dictionary with an 'order' key, but found none. Order '0' "
      "assumed."));
}

// After loading, the tree is packed and the objects are freed. This must be unobservable.

TEST_F(LoadingTest, WhatIsGoneAfterLoadingComesBackTheSameWithoutALine) {
  const auto parser = Parser::initWithPlistAtPath(
      file("{Main={In='#insert S 2'; A={_lhs={}; _rhs=[a]}; P={_lhs={_significantSlots=[{#x-=p}]};"
           " _rhs=[q]; _order=#1}; Also='#insert S'}; S={R={_lhs={_significantSlots=[r]}}}}"),
      "Main");
  EXPECT_THAT(log->lines(),
              testing::ElementsAre("ERROR!", "ERROR: An LHS must have a 'significantSlots' key.",
                                   "ERROR!"));
  log->clear();
  preferences->set(ZKPlistNotificationDefault, Value::boolean(true));
  const std::shared_ptr<GrammarPart> root = parser->theGrammar();
  EXPECT_EQ(root->description(),
            "\nROOT: \n\tA: RULE\n\tAlso: \n\t\tR: RULE\n\tP: RULE\n\tIn: \n\t\tR: RULE");
  EXPECT_TRUE(log->lines().empty());
  EXPECT_EQ(parser->theGrammar(), root);

  const Value tree = parser->grammarsPlist();
  const auto nested = [&tree](std::string_view path) {
    return Parser::retrievePlistForStringInDotNotation(path, tree).asDictionary();
  };
  EXPECT_EQ(formatted("%@", {Value::dictionary(nested("Main.Also"))}),
            formatted("%@", {plist("{R={_lhs={_significantSlots=[r]}; __depth=#2; __name=R;"
                                   " _order=#0}; __depth=#1; __name=Also; _order=#0}")}));
  EXPECT_EQ(nested("Main.In.R"), nested("S.R"));
  EXPECT_EQ(parser->grammarsPlist().asDictionary(), tree.asDictionary());
}

TEST_F(LoadingTest, AGrammarIsThatOfItsLoadingWhateverItsFileBecomes) {
  const std::string path =
      file("{Main={R={_lhs={_significantSlots=[a]}; _rhs={_signature=[]; _expansions={''=[b]}}}}}");
  const auto parser = Parser::initWithPlistAtPath(path, "Main");
  // Building this unused grammar writes the places of parts into a dictionary that has no parts.
  Parser::initWithPlistAtPath(path, "Main.R._rhs");
  const Value expansions = Parser::retrievePlistForStringInDotNotation("Main.R._rhs._expansions",
                                                                       parser->grammarsPlist());
  expansions.asDictionary()->setValueForKey(plist("[c]"), "");
  const auto& root = static_cast<const Directory&>(*parser->theGrammar());
  const auto& rule = static_cast<const Rule&>(*root.orderedSubparts().front());
  EXPECT_EQ(rule.rightHandSide()->description(),
            "\n : \n\t indices: (\n    -1\n) \n\t overlays: ([b])");
  EXPECT_EQ(parser->resultOfRulesAppliedToStrings({"a"})->stringArray(), Words{"b"});
  const auto later = Parser::initWithPlistAtPath(path, "Main");
  EXPECT_EQ(later->resultOfRulesAppliedToStrings({"a"})->stringArray(), Words{"c"});
}

TEST_F(LoadingTest, ATreeThatItsReaderKeepsStaysTheSame) {
  struct KeepingReader : PropertyListReader {
    Result<Value> readFile(const std::string&) const noexcept override { return tree; }
    Value tree = plist("{Main={In={R={_lhs={_significantSlots=[a]}; _rhs=[b]}}}}");
  };
  const auto keeping = std::make_shared<KeepingReader>();
  Platform::shared().propertyListReader = keeping;
  const auto parser = Parser::initWithPlistAtPath("kept by its reader", "Main");
  EXPECT_EQ(parser->grammarsPlist().asDictionary(), keeping->tree.asDictionary());
}

// The tree is packed after each grammar, and unpacked for the next one.
TEST_F(LoadingTest, SwitchingGrammarsWritesIntoTheTreeWhatMakingTheObjectsWrites) {
  const std::string text =
      "{A={B={C={_lhs={_significantSlots=[a]}; _rhs=[b]}; _order=#2}; D='#insert Chunk'};"
      " Chunk={E={_lhs={_significantSlots=[b]}; _rhs=[c]}}; Bad={F={_lhs={_significantSlots=[[]]}};"
      " G={}}}";
  const auto parser = Parser::initWithPlistAtPath(file(text), std::nullopt);
  const Value tree = Parser::loadGrammarsFromPlistAtPath(file(text + " "));
  for (const std::string_view name : {"A.B", "Chunk", "A", "Bad", "A.B", "A.B", "Chunk"}) {
    for (const bool isParser : {true, false}) {
      try {
        isParser ? parser->setGrammar(name) : (void)GrammarObjects::rootIn(tree, name);
      } catch (const GrammarError&) {
        EXPECT_EQ(name, "Bad");
      }
    }
  }
  EXPECT_EQ(parser->resultOfRulesAppliedToStrings({"a", "b"})->stringArray(), (Words{"a", "c"}));
  EXPECT_EQ(formatted("%@", {parser->grammarsPlist()}), formatted("%@", {tree}));
}

TEST(PackedListTest, UnpacksToTheSameTreeAndPacksNoneThatIsHeldElsewhere) {
  Value tree = plist("{a=[#0, #-70000, #2.5, #true, #false, '', {}, []]; b={a=[a]}}");
  Dictionary& root = *tree.asDictionary();
  root.setValueForKey(Value::integer(std::numeric_limits<std::int64_t>::min()), "least");
  root.setValueForKey(Value::data(std::string("\0\xff", 2)), "data");
  root.setValueForKey(Value::date(-0.25), "date");
  root.setValueForKey(root.valueForKey("b"), "b again");
  root.setValueForKey(root.valueForKey("b").asDictionary()->valueForKey("a"), "inner again");
  const auto known = std::make_shared<Vocabulary>();
  known->add("b again");  // "a" has a number of its own
  const auto packed = PackedList::pack(tree, known);
  ASSERT_NE(packed, nullptr);
  const Value unpacked = packed->unpacked();
  EXPECT_TRUE(unpacked.equals(tree));
  EXPECT_EQ(formatted("%@", {unpacked}), formatted("%@", {tree}));
  const Dictionary& copy = *unpacked.asDictionary();
  EXPECT_EQ(copy.valueForKey("b").asDictionary(), copy.valueForKey("b again").asDictionary());
  EXPECT_EQ(copy.valueForKey("b").asDictionary()->valueForKey("a").asArray(),
            copy.valueForKey("inner again").asArray());
  EXPECT_NE(copy.valueForKey("b").asDictionary(), root.valueForKey("b").asDictionary());
  for (const std::string_view key : {"b", "inner again"}) {
    const Value held = root.valueForKey(key);
    EXPECT_EQ(PackedList::pack(tree, nullptr), nullptr) << key;
  }
  EXPECT_EQ(PackedList::pack(Value(tree), nullptr), nullptr);
  EXPECT_NE(PackedList::pack(tree, nullptr), nullptr);
}

}  // namespace
}  // namespace marlune
