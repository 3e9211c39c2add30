#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "fakes/fake_property_list_reader.h"
#include "marlune/grammar/grammar_error.h"
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

  // A file of this test's own, since the cache never forgets one.
  std::string file(std::string_view text) {
    const std::string path =
        std::string(testing::UnitTest::GetInstance()->current_test_info()->name()) +
        std::to_string(reader->files.size());
    reader->files[path] = plist(text);
    return path;
  }

  // The message that loading ends with, "" when it does not.
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

}  // namespace
}  // namespace marlune
