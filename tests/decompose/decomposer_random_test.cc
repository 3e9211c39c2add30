#include <gtest/gtest.h>

#include "support/decomposition_trial.h"
#include "support/platform_fixture.h"

namespace marlune {
namespace {

constexpr unsigned kSeed = 20231;
constexpr unsigned kCases = 4000;

using DecomposerRandomTest = PlatformFixture;

TEST_F(DecomposerRandomTest, CannotBeToldFromThePlainRecursion) {
  std::printf("seeds %u to %u\n", kSeed, kSeed + kCases - 1);
  for (unsigned i = 0; i < kCases; ++i) {
    const auto difference = DecompositionTrial(kSeed + i).difference();
    ASSERT_EQ(difference, std::nullopt) << "seed " << kSeed + i;
  }
}

}  // namespace
}  // namespace marlune
