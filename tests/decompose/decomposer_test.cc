#include "marlune/decompose/decomposer_implementation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "marlune/decompose/decomposer_delegate.h"
#include "marlune/testing/fake_resource_bundle.h"
#include "support/platform_fixture.h"

namespace marlune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsNull;
using testing::Pair;
using testing::Pointee;
using testing::UnorderedElementsAre;
using Words = std::vector<std::string>;

std::unique_ptr<Decomposer> decomposerWith(Words files) {
  return Decomposer::initWithDirectory("Sounds", std::make_shared<FakeResourceBundle>(files));
}

std::string shown(const Decomposition& decomposition) {
  if (!decomposition) return "cannot be said";
  std::string text;
  for (const std::string& file : *decomposition) text += "<" + file + ">";
  return text;
}

// Calls a function of the test.
class FunctionDelegate : public DecomposerOverrides {
 public:
  using Function = std::function<Decomposition(Decomposer&, const std::string& key, bool isPart)>;
  explicit FunctionDelegate(Function function) : _function(std::move(function)) {}
  Decomposition decompositionOf(Decomposer& decomposer, std::string_view key,
                                bool isSubsetOfWhole) override {
    return _function(decomposer, std::string(key), isSubsetOfWhole);
  }

 private:
  Function _function;
};

Decomposition list(Words files) { return std::make_shared<const Words>(std::move(files)); }

class DecomposerTest : public PlatformFixture {
 protected:
  void SetUp() override {
    PlatformFixture::SetUp();
    preferences->set(ZKPlistNotificationDefault, Value::boolean(true));
  }
};

TEST_F(DecomposerTest, ChoosesTheFewestFiles) {
  const struct {
    const char* why;
    Words files, words;
    const char* result;
  } cases[] = {
      {"a word with a recording", {"go"}, {"go"}, "<go>"},
      {"a word without a recording", {"stop"}, {"go"}, "cannot be said"},
      {"on a tie the longest leading file wins",
       {"at_the", "finish", "at", "the_finish"},
       {"at", "the", "finish"},
       "<at_the><finish>"},
      {"the longest leading file also wins inside a split: a_b_c + d, not a + b_c_d or a_b + c_d",
       {"a", "b_c_d", "a_b", "c_d", "a_b_c", "d"},
       {"a", "b", "c", "d"},
       "<a_b_c><d>"},
      {"fewer files win over a longer leading one",
       {"a_b_c", "d", "e", "a", "b_c_d_e"},
       {"a", "b", "c", "d", "e"},
       "<a><b_c_d_e>"},
      {"of equal splits eight words apart the later one wins",
       {"a", "b_c_d_e_f_g_h_i_j", "a_b_c_d_e_f_g_h_i", "j"},
       {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j"},
       "<a_b_c_d_e_f_g_h_i><j>"},
      {"a recording of the whole wins over its words'", {"a", "b", "a_b"}, {"a", "b"}, "<a_b>"},
      {"a bracket binds to the word before", {"a_b[x]"}, {"a", "b", "[x]"}, "<a_b[x]>"},
      {"a phrase falls back to the plain recording", {"a_b"}, {"a", "b[x]"}, "<a_b>"},
      {"a single word does not fall back", {"b"}, {"b[x]"}, "cannot be said"},
      {"a recording with the attribute is better", {"a_b", "a_b[x]"}, {"a", "b[x]"}, "<a_b[x]>"},
      {"no two underscores where a bracket was", {"a__c"}, {"a", "[x]", "c"}, "cannot be said"},
      {"one underscore where a bracket was", {"a_c"}, {"a", "[x]", "c"}, "<a_c>"},
      {"brackets do not nest", {"adea"}, {"a[b[c]d]e", "[f", "g]a"}, "<adea>"},
      {"a word with a blank needs a recording with the blank", {"a_b"}, {"a b"}, "cannot be said"},
      {"a word with a blank needs a recording of its key too", {"a b"}, {"a b"}, "cannot be said"},
      {"a word with a blank is said by its key", {"a b", "a_b"}, {"a b"}, "<a_b>"},
      {"in a longer phrase only the key counts", {"a_b_c"}, {"a b", "c"}, "<a_b_c>"},
      {"no words", {"a"}, {}, "cannot be said"},
      {"no words, and a recording without a name", {""}, {}, "<>"},
      {"an empty word", {"", "a"}, {"a", ""}, "<a><>"},
      {"a repeated word", {"no", "no_no_no"}, {"no", "no", "no", "no"}, "<no_no_no><no>"},
      {"characters outside ASCII", {"\u00fcber_das"}, {"\u00fcber", "das"}, "<\u00fcber_das>"},
      {"words longer than a machine word",
       {"incomprehensibilities", "uncharacteristically_so"},
       {"incomprehensibilities", "uncharacteristically", "so"},
       "<incomprehensibilities><uncharacteristically_so>"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    for (const bool isTraced : {true, false}) {  // without lines, the search takes another way
      preferences->set(ZKPlistNotificationDefault, Value::boolean(isTraced));
      EXPECT_EQ(shown(decomposerWith(c.files)->optimalDecompositionOf(c.words)), c.result);
    }
  }
}

TEST_F(DecomposerTest, NamesRecordingsByTheirPathWithoutTheExtension) {
  const auto decomposer = decomposerWith({"go", "", "go", "1.5"});
  EXPECT_THAT(decomposer->availableSoundFiles(), ElementsAre("go", "", "go", "1.5"));
  EXPECT_THAT(log->lines(),
              ElementsAre("available sound files from '(\n    \"/bundle/Sounds/go.aif\",\n"
                          "    \"/bundle/Sounds/.aif\",\n    \"/bundle/Sounds/go.aif\",\n"
                          "    \"/bundle/Sounds/1.5.aif\"\n)': "
                          "(\n    go,\n    \"\",\n    go,\n    \"1.5\"\n)"));
}

TEST_F(DecomposerTest, RemembersFailuresAndDoesNotReportThemTwice) {
  const auto decomposer = decomposerWith({});
  log->clear();
  EXPECT_THAT(decomposer->optimalDecompositionOf({"go", "on"}), IsNull());
  EXPECT_THAT(log->lines(),
              ElementsAre("Attempting to say: 'go on'.", "Cannot find a sound file for 'go.'",
                          "Cannot find a sound file for 'on.'"));
  log->clear();
  EXPECT_THAT(decomposer->optimalDecompositionOf({"go"}), IsNull());
  EXPECT_THAT(log->lines(), ElementsAre("Attempting to say: 'go'."));
  EXPECT_THAT(
      Decomposer::Implementation::of(*decomposer)._cache(),
      UnorderedElementsAre(Pair("go_on", IsNull()), Pair("go", IsNull()), Pair("on", IsNull())));
}

TEST_F(DecomposerTest, AnAbsentPhraseLeavesNoTrace) {
  const auto decomposer = decomposerWith({""});
  log->clear();
  EXPECT_THAT(decomposer->optimalDecompositionOf(nullptr), IsNull());
  EXPECT_EQ(Decomposer::Implementation::of(*decomposer).iterations(), 0);
  EXPECT_THAT(Decomposer::Implementation::of(*decomposer)._cache(), IsEmpty());
  EXPECT_THAT(log->lines(), IsEmpty());
}

// Two word lists with the same key share the answer to the first one.
TEST_F(DecomposerTest, RemembersByTheKeyAlone) {
  const auto decomposer = decomposerWith({"a", "b"});
  EXPECT_EQ(shown(decomposer->optimalDecompositionOf({"a b"})), "cannot be said");
  EXPECT_EQ(shown(decomposer->optimalDecompositionOf({"a", "b"})), "cannot be said");
  const auto other = decomposerWith({"a", "b"});
  EXPECT_EQ(shown(other->optimalDecompositionOf({"a", "b"})), "<a><b>");
  EXPECT_EQ(shown(other->optimalDecompositionOf({"a b"})), "<a><b>");
}

TEST_F(DecomposerTest, HandsOutTheSameListFromTheSecondTimeOn) {
  const auto decomposer = decomposerWith({"a", "b"});
  const Words words{"a", "b"};
  EXPECT_EQ(decomposer->optimalDecompositionOf(words), decomposer->optimalDecompositionOf(words));
}

// Similar phrases, down to their bytes, each with its own recording.
TEST_F(DecomposerTest, TellsRememberedPhrasesApart) {
  using namespace std::string_literals;
  const std::vector<Words> phrases{{"a"},
                                   {"a\0"s},
                                   {"a", ""},
                                   {"", "a"},
                                   {"ab", "c"},
                                   {"a", "bc"},
                                   {"abcdefg"},
                                   {"abcdefgh"},
                                   {"abcdefg", "h"},
                                   {"abcdefghijklmnop"},
                                   {"abcdefgh", ""},
                                   {"abcdefgh\0"s},
                                   {"aaaaaaaaa"},
                                   {"kilogram"},
                                   {"kilowatt"},
                                   {"aaaaaaaaaa"},
                                   {"a", "a", "a", "a"},
                                   {"\xff\xff\xff\xff\xff\xff\xff"}};
  Words files;
  for (const Words& phrase : phrases) files.push_back(decompositionKey(phrase));
  const auto decomposer = decomposerWith(files);
  for (int round = 0; round < 2; ++round) {
    for (std::size_t i = 0; i < phrases.size(); ++i) {
      EXPECT_EQ(shown(decomposer->optimalDecompositionOf(phrases[i])), "<" + files[i] + ">") << i;
    }
  }
}

TEST_F(DecomposerTest, TheDelegateGoesBeforeAnyRecordingAndIsFinal) {
  const auto decomposer = decomposerWith({"w", "x_y", "a_b"});
  const auto delegate = DecomposerDelegate::initWithWholeOverrides(
      {{"a_b", {"no such file"}}, {"x_y", {"whole"}}}, {{"x_y", {"part"}}});
  decomposer->setDelegate(delegate);
  log->clear();
  EXPECT_EQ(shown(decomposer->optimalDecompositionOf({"a", "b"})), "<no such file>");
  EXPECT_EQ(shown(decomposer->optimalDecompositionOf({"w", "x", "y"})), "<w><part>");
  EXPECT_EQ(shown(decomposer->optimalDecompositionOf({"x", "y"})), "<part>")
      << "a part's answer also answers the whole phrase later";
  decomposer->setDelegate({});
  EXPECT_EQ(shown(decomposer->optimalDecompositionOf({"a", "b"})), "<no such file>");
  EXPECT_EQ(log->lines()[1], "delegateSpecifiedDecomposition: (\n    \"no such file\"\n)");
}

TEST_F(DecomposerTest, ASplitNeverHasMoreFilesThanWords) {
  const auto decomposer = decomposerWith({"c", "c_d"});
  const auto delegate = DecomposerDelegate::initWithWholeOverrides(
      {}, {{"a", {"1", "2"}}, {"b", {"3", "4", "5"}}, {"d", {}}});
  decomposer->setDelegate(delegate);
  EXPECT_EQ(shown(decomposer->optimalDecompositionOf({"a", "b"})), "cannot be said");
  EXPECT_EQ(shown(decomposer->optimalDecompositionOf({"a", "c"})), "cannot be said");
  EXPECT_EQ(shown(decomposer->optimalDecompositionOf({"a", "d"})), "<1><2>");
}

// "[x] b" alone takes more files than words. After an empty word, which does not appear in the key,
// it does not. Later look-ups of the key get that answer.
TEST_F(DecomposerTest, AKeyThatComesAgainIsAnsweredByTheLastAnswer) {
  const auto decomposer = decomposerWith({"a", "b"});
  const auto delegate = DecomposerDelegate::initWithWholeOverrides(
      {}, {{"[x]", {"1", "2"}}, {"a_", {"3"}}, {"a_[x]", Words(9, "long")}});
  decomposer->setDelegate(delegate);
  EXPECT_EQ(shown(decomposer->optimalDecompositionOf({"a", "", "[x]", "b"})), "<3><1><2><b>");
}

TEST_F(DecomposerTest, CountsEveryCallOfThePlainRecursion) {
  const auto decomposer = decomposerWith({"a", "b"});
  Decomposer::Implementation::of(*decomposer)._setDebugging(true);
  log->clear();
  decomposer->optimalDecompositionOf({"a", "b"}, /*isSubsetOfWhole=*/false);
  EXPECT_THAT(log->lines(),
              ElementsAre("Iterations so far: 1", "Iterations so far: 2", "Iterations so far: 3"));
  Decomposer::Implementation::of(*decomposer)._setDebugging(false);
  // 80 different words: one call, plus two for every split of every stretch.
  Words words;
  for (int i = 0; i < 80; ++i) words.push_back("w" + std::to_string(i));
  const auto fresh = decomposerWith({});
  EXPECT_THAT(fresh->optimalDecompositionOf(words), IsNull());
  EXPECT_EQ(Decomposer::Implementation::of(*fresh).iterations(), 1 + 80 * (80 * 80 - 1) / 3);
}

// In the middle of a search, a delegate may call the decomposer, replace the delegate and read the
// counter.
TEST_F(DecomposerTest, ADelegateMayReenter) {
  const auto decomposer = decomposerWith({"a", "b", "b_c"});
  Words questions;
  std::shared_ptr<DecomposerOverrides> later =
      std::make_shared<FunctionDelegate>([&](Decomposer& asking, const std::string& key, bool) {
        questions.push_back("later " + key + " " +
                            std::to_string(Decomposer::Implementation::of(asking).iterations()));
        return Decomposition();
      });
  std::shared_ptr<DecomposerOverrides> first = std::make_shared<FunctionDelegate>(
      [&](Decomposer& asking, const std::string& key, bool isSubsetOfWhole) {
        questions.push_back("first " + key + " " +
                            std::to_string(Decomposer::Implementation::of(asking).iterations()));
        if (key != "b_c" || !isSubsetOfWhole) return Decomposition();
        EXPECT_EQ(shown(asking.optimalDecompositionOf({"b", "c"})), "<b_c>");
        asking.setDelegate(later);
        first.reset();  // the delegate stays alive until it returns
        return list({"x", "y"});
      });
  decomposer->setDelegate(first);
  EXPECT_EQ(shown(decomposer->optimalDecompositionOf({"a", "b", "c"})), "<a><x><y>")
      << "the later answer replaces the one of the nested call";
  EXPECT_THAT(questions, ElementsAre("first a_b_c 1", "first a 2", "first b_c 3", "first b_c 4",
                                     "later a_b 5", "later b 7", "later c 8"));
  EXPECT_EQ(shown(decomposer->optimalDecompositionOf({"b", "c"})), "<x><y>");
}

TEST_F(DecomposerTest, ASearchGoesOnAfterADelegateThatAnsweredItselfAndWent) {
  preferences->set(ZKPlistNotificationDefault, Value::boolean(false));
  const auto decomposer = decomposerWith({"a", "b"});
  bool isInner = false;
  std::shared_ptr<DecomposerOverrides> delegate =
      std::make_shared<FunctionDelegate>([&](Decomposer& asking, const std::string&, bool) {
        if (isInner) return list({"x"});
        isInner = true;
        EXPECT_EQ(shown(asking.optimalDecompositionOf({"a", "b"})), "<x>");
        delegate.reset();
        return Decomposition();
      });
  decomposer->setDelegate(delegate);
  EXPECT_EQ(shown(decomposer->optimalDecompositionOf({"a", "b"})), "<a><b>");
  EXPECT_EQ(shown(decomposer->optimalDecompositionOf({"a", "b"})), "<a><b>");
}

TEST_F(DecomposerTest, ADelegateThatThrowsLeavesNoAnswerBehind) {
  const auto decomposer = decomposerWith({"a", "b"});
  const auto delegate = std::make_shared<FunctionDelegate>(
      [](Decomposer&, const std::string& key, bool) -> Decomposition {
        if (key == "b") throw std::runtime_error("no");
        return nullptr;
      });
  decomposer->setDelegate(delegate);
  EXPECT_THROW(decomposer->optimalDecompositionOf({"a", "b"}), std::runtime_error);
  EXPECT_THAT(Decomposer::Implementation::of(*decomposer)._cache(),
              UnorderedElementsAre(Pair("a", Pointee(ElementsAre("a")))));
  decomposer->setDelegate({});
  EXPECT_EQ(shown(decomposer->optimalDecompositionOf({"a", "b"})), "<a><b>");
}

// Remembering all stretches of any of these would take gigabytes or minutes.
TEST_F(DecomposerTest, ATooLongPhraseIsRefusedWithALineAndForgotten) {
  Words same(20000, "w"), different, longWords(1000, std::string(1000, 'w'));
  for (int i = 0; i < 20000; ++i) different.push_back("w" + std::to_string(i));
  const auto decomposer = decomposerWith({"w", "w_w"});
  preferences->set(ZKPlistNotificationDefault, Value::boolean(false));
  for (const auto& [words, bytes] : {std::pair(same, 39999), std::pair(different, 128889),
                                     std::pair(longWords, 1000999), std::pair(same, 39999)}) {
    log->clear();
    EXPECT_EQ(shown(decomposer->optimalDecompositionOf(words)), "cannot be said");
    EXPECT_THAT(log->lines(),
                ElementsAre(formatted("ERROR: A phrase of %lu words and %i bytes is too long to be "
                                      "decomposed.",
                                      {words.size(), bytes})));
  }
  EXPECT_EQ(Decomposer::Implementation::of(*decomposer).iterations(), 4);
  EXPECT_THAT(Decomposer::Implementation::of(*decomposer)._cache(), IsEmpty());
  EXPECT_EQ(shown(decomposer->optimalDecompositionOf({"w", "w", "w"})), "<w_w><w>");
  EXPECT_EQ(decomposer->optimalDecompositionOf(Words(2000, "w"))->size(), 1000u);
}

TEST_F(DecomposerTest, ATooLongPhraseIsSaidWithoutASplit) {
  Words words(3000, "w");
  const std::string key = decompositionKey(words);
  const auto delegate = DecomposerDelegate::initWithWholeOverrides({{key, {"whole"}}}, {});
  const auto overridden = decomposerWith({});
  overridden->setDelegate(delegate);
  EXPECT_EQ(shown(overridden->optimalDecompositionOf(words)), "<whole>");
  EXPECT_EQ(shown(decomposerWith({key})->optimalDecompositionOf(words)), "<" + key + ">");
  words.back() = "w[x]";
  const auto stripping = decomposerWith({key});
  EXPECT_EQ(shown(stripping->optimalDecompositionOf(words)), "<" + key + ">");
  EXPECT_EQ(shown(stripping->optimalDecompositionOf(words)), "<" + key + ">");
}

TEST_F(DecomposerTest, LongPhrasesNeedNoDeepStack) {
  Words words(700, "w");
  words.push_back("end");
  const auto decomposer = decomposerWith({"w", "w_w_w_w_w_w_w", "end"});
  const Decomposition files = decomposer->optimalDecompositionOf(words);
  ASSERT_TRUE(files);
  EXPECT_EQ(files->size(), 101u);
  EXPECT_EQ(files->back(), "end");
}

}  // namespace
}  // namespace marlune
