#include "marlune/util/arrays.h"

#include <gmock/gmock.h>

#include <span>
#include <string>

namespace marlune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Numbers = std::vector<int>;
const Numbers kFive = {1, 2, 3, 4, 5};

TEST(ArraysTest, WithoutEmptyStringsKeepsWhatIsNoString) {
  EXPECT_THAT(_withoutEmptyStrings(std::vector<std::string>{"", "a", " ", ""}),
              ElementsAre("a", " "));
  EXPECT_EQ(_withoutEmptyStrings(std::vector{Value::string(""), Value::integer(0), Value()}).size(),
            2u);
  EXPECT_EQ(_withoutEmptyStrings(kFive), kFive);
}

TEST(ArraysTest, RepeatedNTimes) {
  EXPECT_THAT(repeatedNTimes(std::span(kFive).first(2), 2), ElementsAre(1, 2, 1, 2));
  EXPECT_THAT(repeatedNTimes(kFive, 0), IsEmpty());
  EXPECT_THAT(repeatedNTimes(kFive, -1), IsEmpty());
}

struct RunCase {
  Numbers run;
  bool isContained;
};

TEST(ArraysTest, ContainsSubArray) {
  const RunCase cases[] = {{{4, 5}, true}, {{5, 4}, false}, {{1, 3}, false},
                           {kFive, true},  {{}, true},      {{1, 2, 3, 4, 5, 6}, false}};
  for (const RunCase& c : cases) {
    EXPECT_EQ(_containsSubArray(kFive, c.run), c.isContained) << testing::PrintToString(c.run);
  }
  EXPECT_TRUE(_containsSubArray(Numbers{}, Numbers{}));
  EXPECT_TRUE(_containsSubArray(Numbers{1, 1, 2}, Numbers{1, 2}));
}

struct SubsequenceCase {
  std::string_view why;
  std::size_t from, to;
  Numbers result;
};

TEST(ArraysTest, SubsequenceFromTo) {
  const SubsequenceCase cases[] = {
      {"up to the end", 2, 5, {3, 4, 5}},
      {"nothing between", 5, 5, {}},
      {"an end before the start", 3, 2, {}},
      {"an end beyond the array selects all of it", 2, 10, kFive},
      {"so does one with a start beyond the array", 8, 10, kFive},
      {"an end before a start beyond the array", 10, 8, {}},
  };
  for (const SubsequenceCase& c : cases) {
    EXPECT_EQ(_subsequenceFrom(kFive, c.from, c.to), c.result) << c.why;
  }
  EXPECT_EQ(_subsequenceToIndex(kFive, 9), kFive);
  EXPECT_THAT(_subsequenceFromIndex(kFive, 9), IsEmpty());
}

struct SpliceCase {
  std::string_view why;
  std::int32_t at, amount;
  Numbers inserted, overlayed;
};

// Overlays 10 and 20 are added to the elements below them; 0 and 9 are inserted.
TEST(ArraysTest, Splice) {
  const SpliceCase cases[] = {
      {"in the middle", 1, 2, {1, 0, 9, 4, 5}, {1, 12, 23, 4, 5}},
      {"more overlays than elements", 4, 1, {1, 2, 3, 4, 0, 9}, {1, 2, 3, 4, 15}},
      {"a run past the end selects all", 3, 9, {1, 2, 3, 0, 9}, {1, 2, 3, 11, 22, 3, 4, 5}},
      {"a start beyond the end keeps the whole array",
       7,
       1,
       {1, 2, 3, 4, 5, 0, 9},
       {1, 2, 3, 4, 5, 11, 22, 3, 4, 5}},
      {"a negative start lies beyond the end, but its sum may not",
       -1,
       3,
       {1, 2, 3, 4, 5, 0, 9, 3, 4, 5},
       {1, 2, 3, 4, 5, 3, 4, 5}},
  };
  const auto add = [](int overlay, int element) { return overlay + element; };
  for (const SpliceCase& c : cases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(_spliceAtAndInsert(kFive, c.at, c.amount, Numbers{0, 9}), c.inserted);
    EXPECT_EQ(_spliceAtAndOverlay(kFive, c.at, c.amount, Numbers{10, 20}, add), c.overlayed);
  }
}

}  // namespace
}  // namespace marlune
