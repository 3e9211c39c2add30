#include "marlune/decompose/decomposer_delegate.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "marlune/decompose/decomposer.h"
#include "marlune/testing/fake_resource_bundle.h"

namespace marlune {
namespace {

using testing::ElementsAre;
using testing::IsNull;
using testing::Pointee;

TEST(DecomposerDelegateTest, ATableNeverAnswersForTheOther) {
  DecomposerDelegate::Overrides whole{{"hello_there", {"hi", "there"}}, {"both", {"all"}}};
  DecomposerDelegate::Overrides parts{{"far[x]", {}}, {"both", {"bit", "bit"}}};
  const auto delegate = DecomposerDelegate::initWithWholeOverrides(whole, parts);
  whole["hello_there"] = {"changed"};  // too late: the table was copied
  const auto decomposer = Decomposer::initWithDirectory("Sounds", nullptr);

  const auto answer = [&](std::string_view key, bool isSubsetOfWhole) {
    return delegate->decompositionOf(*decomposer, key, isSubsetOfWhole);
  };
  EXPECT_THAT(answer("hello_there", false), Pointee(ElementsAre("hi", "there")));
  EXPECT_THAT(answer("hello_there", true), IsNull());
  EXPECT_THAT(answer("far[x]", true), Pointee(ElementsAre())) << "an empty list is an answer";
  EXPECT_THAT(answer("far[x]", false), IsNull());
  EXPECT_THAT(answer("both", false), Pointee(ElementsAre("all")));
  EXPECT_THAT(answer("both", true), Pointee(ElementsAre("bit", "bit")));
}

}  // namespace
}  // namespace marlune
