#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <map>
#include <new>
#include <set>
#include <string>
#include <vector>

#include "fakes/fake_preferences.h"
#include "marlune/decompose/decomposer_implementation.h"
#include "marlune/desktop/plist/property_list_file.h"
#include "marlune/desktop/plist/xml_list_writer.h"
#include "marlune/grammar/parser.h"
#include "marlune/platform/platform.h"
#include "marlune/testing/fake_resource_bundle.h"
#include "marlune/util/tq_utils.h"
#include "reference/reference_decomposer.h"
#include "robustness/failing_allocation.h"
#include "support/binary_list.h"
#include "support/list_read.h"
#include "support/plist_notation.h"
#include "support/temporary_directory.h"

namespace marlune {
namespace {

using Words = std::vector<std::string>;

// Uses every feature that allocates: inserts, contexts, repetitions, references, a conditional
// rule, a rule that repeats, and one that logs.
constexpr std::string_view kGrammar = R"(
{
  Main = {
    Units = '#insert Shared.Units 2';
    Count = {
      _order = #1; _repeat = #1;
      _lhs = {_preContext = [_E, [*, [+, run, '?']]]; _significantSlots = [five, six]};
      _rhs = [{_index = #1; content = {_index = #0; _attribute = content}}, more]
    };
    Start = {_order = #3; _lhs = {_significantSlots = [{#x- = r}]}; _rhs = [{_index = #0}, on]}
  };
  Shared = {
    Units = {
      _lhs = {_significantSlots = [[+, km, mi]]; _postContext = [[~, away]]};
      _rhs = {_signature = [{_index = #0; _attribute = content}]; _expansions = {km = [kilometers]}}
    }
  }
}
)";
const Words kPhrase = {"run", "five", "six", "km", "x"};

// Accepts lines without allocating, because SystemLog must not throw.
class DiscardingLog : public SystemLog {
 public:
  void write(std::string_view) noexcept override {}
};

class AllocationFailureTest : public testing::Test {
 protected:
  void SetUp() override {
    Platform::shared().systemLog = std::make_shared<DiscardingLog>();
    Platform::shared().preferences = preferences;
    Platform::shared().propertyListReader = std::make_shared<PropertyListFile>();
  }
  void TearDown() override { Platform::shared() = _formerPlatform; }

  std::string grammarFile(const std::string& name, bool isBinary = false) {
    const Value grammar = PlistNotation::parse(kGrammar);
    if (!isBinary) return folder.write(name, *writePropertyListXml(grammar));
    BinaryList list;
    const std::size_t root = list.addValue(grammar);
    return folder.write(name, list.file(root));
  }

  // Runs `attempt` repeatedly with its first, second, ... allocation failing, until none fails. An
  // attempt must end by std::bad_alloc or normally, and `check` must hold after each. Returns the
  // number of allocations.
  static std::size_t sweep(const std::function<void(std::size_t)>& prepare,
                           const std::function<void()>& attempt,
                           const std::function<void()>& check) {
    for (std::size_t number = 0;; ++number) {
      SCOPED_TRACE("allocation " + std::to_string(number));
      prepare(number);
      bool hasFailed = false;
      {
        const FailingAllocation failing(number);
        try {
          attempt();
        } catch (const std::bad_alloc&) {
          EXPECT_TRUE(failing.hasFailed());
        }
        hasFailed = failing.hasFailed();
      }
      check();
      if (!hasFailed || HasFailure()) return number;
    }
  }

  static Words rewritten(const Parser& parser) {
    return parser.resultOfRulesAppliedToStrings(kPhrase)->stringArray();
  }

  TemporaryDirectory folder;
  const std::shared_ptr<FakePreferences> preferences = std::make_shared<FakePreferences>();

 private:
  const Platform _formerPlatform = Platform::shared();
};

TEST_F(AllocationFailureTest, AGrammarLoadsAfterALoadThatFailed) {
  for (const bool isBinary : {false, true}) {
    SCOPED_TRACE(isBinary ? "binary" : "XML");
    const std::string kind = isBinary ? "binary" : "xml";
    const Words expected = rewritten(*Parser::initWithPlistAtPath(grammarFile(kind), "Main"));
    ASSERT_EQ(expected, (Words{"run", "on", "five", "more", "kilometers", "x"}));
    std::string path;
    std::unique_ptr<Parser> parser;
    const std::size_t count = sweep(
        [&](std::size_t number) { path = grammarFile(kind + std::to_string(number), isBinary); },
        [&] { parser = Parser::initWithPlistAtPath(path, "Main"); },
        [&] {
          EXPECT_EQ(rewritten(*Parser::initWithPlistAtPath(path, "Main")), expected);
          std::filesystem::remove(path);
        });
    EXPECT_GT(count, 100u);
  }
}

// The reader never throws, whichever library runs out of memory.
TEST_F(AllocationFailureTest, AListIsReadOrRefusedInOneSentence) {
  const PropertyListFile reader;
  for (const bool isBinary : {false, true}) {
    const std::string path = grammarFile(isBinary ? "binary" : "xml", isBinary);
    const std::string expected = *writePropertyListXml(reader.readFile(path).value());
    ListRead result(Value{});
    const std::size_t count =
        sweep([](std::size_t) {}, [&] { result = reader.readFile(path); },
              [&] {
                if (result.root.isAbsent()) {
                  EXPECT_THAT(result.error, testing::HasSubstr("out of memory"));
                } else {
                  EXPECT_EQ(*writePropertyListXml(result.root), expected);
                }
              });
    EXPECT_GT(count, 50u);
    EXPECT_EQ(result.error, "");
  }
}

// Uses a new parser each time: what a trace needs is built on first use.
TEST_F(AllocationFailureTest, APhraseIsRewrittenAfterOneThatWasNot) {
  const std::string path = grammarFile("phrase");
  const Words expected = rewritten(*Parser::initWithPlistAtPath(path, "Main"));
  for (const bool isTraced : {false, true}) {
    SCOPED_TRACE(isTraced ? "traced" : "not traced");
    std::unique_ptr<Parser> parser;
    Words result;
    const auto prepare = [&](std::size_t) {
      preferences->set(ZKPlistNotificationDefault, Value::boolean(false));
      parser = Parser::initWithPlistAtPath(path, "Main");
      preferences->set(ZKPlistNotificationDefault, Value::boolean(isTraced));
    };
    const std::size_t count = sweep(
        prepare, [&] { result = rewritten(*parser); },
        [&] { EXPECT_EQ(rewritten(*parser), expected); });
    EXPECT_EQ(result, expected);
    EXPECT_GT(count, 10u);
  }
}

TEST_F(AllocationFailureTest, AParserKeepsItsGrammarWhenItCannotSwitch) {
  const auto parser = Parser::initWithPlistAtPath(grammarFile("switched"), "Main");
  const Words expected = rewritten(*parser);
  const Words other = {"run", "five", "six", "kilometers", "x"};  // uses only the shared rule
  bool isSwitched = false;
  const auto prepare = [&](std::size_t) { parser->setGrammar("Main"); };
  const auto attempt = [&] {
    isSwitched = false;
    parser->setGrammar("Shared");
    isSwitched = true;
  };
  const std::size_t count = sweep(
      prepare, attempt, [&] { EXPECT_EQ(rewritten(*parser), isSwitched ? other : expected); });
  EXPECT_TRUE(isSwitched);
  EXPECT_GT(count, 10u);
}

TEST_F(AllocationFailureTest, ADecomposerAnswersAfterAFailureAndRemembersNothingWrong) {
  const auto bundle = std::make_shared<FakeResourceBundle>(
      Words{"run", "run_on", "five", "more", "five_more", "kilometers", "finish"});
  const Words phrase = {"run", "on", "five", "more", "finish[x]", "kilometers"};
  const Words withoutAttribute = {"run", "on", "five", "more", "kilometers"};
  std::unique_ptr<Decomposer> decomposer;
  const std::size_t count =
      sweep([&](std::size_t) { decomposer = Decomposer::initWithDirectory("Sounds", bundle); },
            [&] {
              decomposer->optimalDecompositionOf(withoutAttribute);
              decomposer->optimalDecompositionOf(phrase);
            },
            [&] {
              const Decomposition files = decomposer->optimalDecompositionOf(withoutAttribute);
              ASSERT_NE(files, nullptr);
              EXPECT_EQ(*files, (Words{"run_on", "five_more", "kilometers"}));
              EXPECT_EQ(decomposer->optimalDecompositionOf(phrase), nullptr);
              EXPECT_EQ(Decomposer::Implementation::of(*decomposer)._cache().size(), 25u);
            });
  EXPECT_GT(count, 10u);
  EXPECT_GT(sweep([](std::size_t) {},
                  [&] { decomposer = Decomposer::initWithDirectory("Sounds", bundle); }, [] {}),
            10u);
}

// Asks the decomposer for the same phrase it is asked for, which stores an answer, and returns a
// different one.
class AskingDelegate : public DecomposerOverrides {
 public:
  Decomposition decompositionOf(Decomposer& decomposer, std::string_view key, bool) override {
    return _answer(key,
                   [&] {
                     decomposer.optimalDecompositionOf({"a", "b"});
                   })
               ? std::make_shared<const Words>(Words{"other"})
               : nullptr;
  }
  ReferenceDecomposer::Delegate forReference(ReferenceDecomposer& reference) {
    return [this, &reference](const std::string& key, bool) {
      const bool isAnswered = _answer(key, [&] { reference.optimalDecompositionOf({"a", "b"}); });
      return isAnswered ? ReferenceDecomposer::Answer({"other"}) : std::nullopt;
    };
  }

 private:
  template <typename Ask>
  bool _answer(std::string_view key, Ask ask) {
    if (_isAsking || key != "a_b") return false;
    _isAsking = true;
    try {
      ask();
    } catch (...) {
      _isAsking = false;
      throw;
    }
    _isAsking = false;
    return true;
  }
  bool _isAsking = false;
};

// Answers stored before the failure count; after it, the results equal those of the plain
// recursion.
TEST_F(AllocationFailureTest, AnAnswerThatAnotherSupersedesIsWholeOrNotThere) {
  const Words files = {"a", "b", "c"}, phrase = {"c", "a", "b", "c"};
  const auto bundle = std::make_shared<FakeResourceBundle>(files);
  const auto delegate = std::make_shared<AskingDelegate>();
  const auto rememberedBy = [](const Decomposer& decomposer) {
    std::map<std::string, ReferenceDecomposer::Answer> cache;
    for (const auto& [key, answer] : Decomposer::Implementation::of(decomposer)._cache()) {
      cache[key] = answer ? ReferenceDecomposer::Answer(*answer) : std::nullopt;
    }
    return cache;
  };
  std::unique_ptr<Decomposer> decomposer;
  std::set<Words> answers;
  const auto prepare = [&](std::size_t) {
    decomposer = Decomposer::initWithDirectory("Sounds", bundle);
    decomposer->setDelegate(delegate);
  };
  const auto check = [&] {
    ReferenceDecomposer reference(files);
    reference.delegate = delegate->forReference(reference);
    reference.cache = rememberedBy(*decomposer);
    const Decomposition answer = decomposer->optimalDecompositionOf(phrase);
    ASSERT_NE(answer, nullptr);
    EXPECT_EQ(*answer, reference.optimalDecompositionOf(phrase));
    EXPECT_EQ(rememberedBy(*decomposer), reference.cache);
    answers.insert(*answer);
  };
  const std::size_t count = sweep(
      prepare, [&] { decomposer->optimalDecompositionOf(phrase); }, check);
  EXPECT_GT(count, 10u);
  EXPECT_EQ(answers, (std::set<Words>{{"c", "a", "b", "c"}, {"c", "other", "c"}}));
}

// Many keys, so that the dictionary is hashed: both the hash table and the entries grow.
TEST_F(AllocationFailureTest, ADictionaryHoldsEachKeyOnceAfterOneThatWasNotSet) {
  const std::size_t kKeys = 70;
  Dictionary dictionary;
  const auto setAll = [&] {
    for (std::size_t i = 0; i < kKeys; ++i) {
      dictionary.setValueForKey(Value::integer(0), "key " + std::to_string(i));
    }
  };
  const std::size_t count = sweep([&](std::size_t) { dictionary = Dictionary(); }, setAll,
                                  [&] {
                                    setAll();
                                    EXPECT_EQ(dictionary.count(), kKeys);
                                  });
  EXPECT_GT(count, kKeys);
}

TEST_F(AllocationFailureTest, ALineThatCannotBeMadeIsLostWithoutAWord) {
  const Value list = PlistNotation::parse("{a = [b, c]; d = {}}");
  EXPECT_GT(sweep([](std::size_t) {},
                  [&] { EXPECT_NO_THROW(TQUtils::log("a line that is long: %@", list)); }, [] {}),
            1u);
}

}  // namespace
}  // namespace marlune
