#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "fakes/fake_property_list_reader.h"
#include "marlune/grammar/parser.h"
#include "reference/reference_grammar.h"
#include "support/platform_fixture.h"
#include "support/random_grammar.h"

namespace marlune {
namespace {

constexpr std::uint64_t kFirstSeed = 20240611;
constexpr int kGrammars = 2500;
constexpr int kPhrasesPerGrammar = 3;

class RandomGrammarsTest : public PlatformFixture {
 protected:
  void SetUp() override {
    PlatformFixture::SetUp();
    Platform::shared().propertyListReader = reader;
  }

  // The parser of a grammar. Copies the file, because the loader writes into it.
  std::unique_ptr<Parser> parserOf(const Value& file, const std::string& path) {
    reader->files = {{path, file}};
    return Parser::initWithPlistAtPath(path, "Main");
  }

  const std::shared_ptr<FakePropertyListReader> reader = std::make_shared<FakePropertyListReader>();
};

TEST_F(RandomGrammarsTest, ResultsPhrasesAndLinesAreThoseOfTheReference) {
  int compared = 0;
  int rewritten = 0;
  for (int i = 0; i < kGrammars; ++i) {
    const std::uint64_t seed = kFirstSeed + static_cast<std::uint64_t>(i);
    SCOPED_TRACE(seed);
    RandomGrammar random(seed);
    const Value file = random.file();
    reference::Grammar reference(file, "Main");
    const auto parser = parserOf(file, "random" + std::to_string(seed));
    for (int j = 0; j < kPhrasesPerGrammar; ++j) {
      const std::vector<std::string> words = random.phrase();
      reference.traces = random.chance(2);
      preferences->set(ZKPlistNotificationDefault, Value::boolean(reference.traces));
      const auto expected = reference.appliedAlone(words);
      if (!expected) continue;
      log->clear();
      const auto phrase = parser->resultOfRulesAppliedToStrings(words);
      const std::string shown = formatted("%@\n%@", {file, words});
      ASSERT_EQ(phrase->description(), reference::printed(*expected)) << shown;
      ASSERT_EQ(phrase->stringArray(), reference::Grammar::words(*expected)) << shown;
      ASSERT_EQ(log->lines(), reference.lines) << shown;
      ++compared;
      if (phrase->stringArray() != words) ++rewritten;
    }
    preferences->set(ZKPlistNotificationDefault, Value::boolean(false));
  }
  std::printf("%d cases compared, %d of them rewritten, from seed %llu\n", compared, rewritten,
              static_cast<unsigned long long>(kFirstSeed));
  EXPECT_GT(compared, kGrammars * kPhrasesPerGrammar * 9 / 10);
  EXPECT_GT(rewritten, compared / 3);
}

}  // namespace
}  // namespace marlune
