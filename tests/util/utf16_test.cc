#include "marlune/util/utf16.h"

#include <gtest/gtest.h>

namespace marlune {
namespace {

struct CountCase {
  std::string_view why, text;
  std::size_t length;
};
constexpr CountCase kCountCases[] = {
    {"ASCII", "ten", 3},
    {"two and three bytes are one unit", "über€", 5},
    {"four bytes are a surrogate pair", "a😀", 3},
    {"a stray continuation byte", "a\x80", 2},
    {"a character cut short", "\xE2\x82", 2},
    {"an overlong form", "\xC0\xAF", 2},
    {"a lone surrogate is not well-formed", "\xED\xA0\x80", 3},
    {"beyond the last code point", "\xF4\x90\x80\x80", 4},
};

TEST(Utf16Test, Length) {
  for (const CountCase& c : kCountCases) EXPECT_EQ(utf16Length(c.text), c.length) << c.why;
}

TEST(Utf16Test, PrefixAndSuffix) {
  EXPECT_EQ(utf16Prefix("über", 2), "üb");
  EXPECT_EQ(utf16Suffix("süß", 2), "üß");
  EXPECT_EQ(utf16Suffix("ten", 0), "");
  EXPECT_EQ(utf16Prefix("ü", 2), std::nullopt);
  EXPECT_EQ(utf16Suffix("ü", 2), std::nullopt);
  EXPECT_EQ(utf16Prefix("a😀b", 3), "a😀");
  EXPECT_EQ(utf16Prefix("a😀b", 2), std::nullopt);  // inside the pair
  EXPECT_EQ(utf16Suffix("a😀b", 2), std::nullopt);
}

}  // namespace
}  // namespace marlune
