#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <vector>

#include "marlune/decompose/decomposer_delegate.h"
#include "marlune/decompose/decomposer_implementation.h"
#include "marlune/testing/fake_resource_bundle.h"
#include "reference/reference_gaps.h"
#include "support/platform_fixture.h"

namespace marlune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;
using Words = std::vector<std::string>;
using Positions = std::vector<std::size_t>;

class PhraseGapsTest : public PlatformFixture {
 protected:
  static std::unique_ptr<Decomposer> decomposerWith(const Words& files) {
    return Decomposer::initWithDirectory("Sounds", std::make_shared<FakeResourceBundle>(files));
  }

  static std::map<std::string, Words> rememberedBy(const Decomposer::Implementation& decomposer) {
    std::map<std::string, Words> remembered;
    for (const auto& [key, files] : decomposer._cache()) {
      remembered[key] = files ? *files : Words{"cannot be said"};
    }
    return remembered;
  }
};

TEST_F(PhraseGapsTest, TheWordsLeftOutAreTheFewestAndFurthestRight) {
  const struct {
    std::string_view why;
    Words files, words;
    Positions gaps;
  } cases[] = {
      {"a word without a recording", {"a", "c"}, {"a", "b", "c", "b"}, {1, 3}},
      {"two recordings that overlap", {"a_b", "b_c"}, {"a", "b", "c"}, {2}},
      {"a longer recording covers more", {"a_b", "b_c_d"}, {"a", "b", "c", "d"}, {0}},
      {"an attribute is dropped in a longer part", {"a_b"}, {"a", "b[x]", "c[x]"}, {2}},
      {"a single word keeps its attribute", {"a"}, {"a[x]"}, {0}},
      {"a blank in a word", {"a_b"}, {"a b"}, {0}},
      {"nothing left out", {"a"}, {"a", "a"}, {}},
      {"no words", {}, {}, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    const auto decomposer = decomposerWith(c.files);
    EXPECT_EQ(decomposer->uncoveredWordsOf(c.words), c.gaps);
    decomposer->optimalDecompositionOf(c.words);
    EXPECT_EQ(decomposer->uncoveredWordsOf(c.words), c.gaps) << "after the search";
  }
}

TEST_F(PhraseGapsTest, RandomPhrasesLeaveOutWhatThePlainSearchLeavesOut) {
  constexpr unsigned kSeed = 20251;
  const Words plain{"a", "b", "c", "a[x]", "b[x]"};
  const Words odd{"a", "b", "a b", "", "[x]", "a[", "]b", "b[x]c", "_"};
  preferences->set(ZKPlistNotificationDefault, Value::boolean(false));
  for (unsigned seed = kSeed; seed < kSeed + 300; ++seed) {
    std::mt19937 random(seed);
    // A search remembers by a key that odd words share, so it would change what is asked for.
    const bool isSearched = seed % 2 == 0;
    const Words& pool = isSearched ? plain : odd;
    const auto some = [&](std::size_t most) {
      Words words(1 + random() % most);
      for (std::string& word : words) word = pool[random() % pool.size()];
      return words;
    };
    Words files;
    for (std::size_t i = random() % 8; i > 0; --i) files.push_back(decompositionKey(some(3)));
    const auto decomposer = decomposerWith(files);
    const Words words = some(6);
    if (isSearched) decomposer->optimalDecompositionOf(words);
    const auto& implementation = Decomposer::Implementation::of(*decomposer);
    const auto remembered = rememberedBy(implementation);
    const auto calls = implementation.iterations();
    ASSERT_EQ(decomposer->uncoveredWordsOf(words), referenceGaps(files, words))
        << "seed " << seed << formatted(": %@ of %@", {words, files});
    ASSERT_EQ(rememberedBy(implementation), remembered);
    ASSERT_EQ(implementation.iterations(), calls);
  }
}

TEST_F(PhraseGapsTest, ADelegateIsNotAskedButItsAnswersCount) {
  const auto decomposer = decomposerWith({"c"});
  const auto delegate =
      DecomposerDelegate::initWithWholeOverrides({}, {{"a", {"A", "B", "A"}}, {"b", {"c"}}});
  decomposer->setDelegate(delegate);
  EXPECT_THAT(decomposer->uncoveredWordsOf({"a", "b", "c"}), Optional(ElementsAre(0, 1)));
  EXPECT_FALSE(decomposer->optimalDecompositionOf({"a", "b"}));  // more files than words
  EXPECT_THAT(decomposer->uncoveredWordsOf({"a", "b"}), Optional(IsEmpty()));
  EXPECT_THAT(decomposer->namesWithoutRecording({"A", "c", "B", "A"}), ElementsAre("A", "B"));
  EXPECT_EQ(decomposer->uncoveredWordsOf(Words(2001, "c")), std::nullopt);
}

}  // namespace
}  // namespace marlune
