#include "marlune/util/strings.h"

#include <gtest/gtest.h>

namespace marlune {
namespace {

struct TextCase {
  std::string_view text, result;
};

TEST(StringsTest, IsWhitespace) {
  for (const std::string_view text : {" ", "\n", "\t"}) EXPECT_TRUE(_isWhitespace(text));
  for (const std::string_view text : {"", "  ", "\r", "\u00a0", "a"}) {
    EXPECT_FALSE(_isWhitespace(text)) << text;
  }
}

TEST(StringsTest, FirstWord) {
  constexpr TextCase kCases[] = {
      {"ten miles", "ten"}, {" ten", ""}, {"über\tten", "über"}, {"ten", "ten"}, {"", ""}};
  for (const TextCase& c : kCases) EXPECT_EQ(_firstWord(c.text), c.result) << c.text;
}

TEST(StringsTest, WithoutExtraWhitespaceDropsTheLastCharacter) {
  constexpr TextCase kCases[] = {
      {"a  b\n", "a b"},     {"a b", "a "},
      {" \t a\n", " a"},     {"a \n", "a"},  // the run ends at the last character
      {"a\n\n b \n", "a b"}, {"x", ""},
      {"ab", "a"},           {"", ""},
      {"zwölü", "zwöl"},  // a character, not a byte
      {"a 😀", "a "},      // no half of a pair remains
  };
  for (const TextCase& c : kCases) EXPECT_EQ(_withoutExtraWhitespace(c.text), c.result) << c.text;
}

TEST(StringsTest, WithoutBracketedWords) {
  constexpr TextCase kCases[] = {{"a[b[c]d]e", "ade"}, {"ten [f] miles", "ten  miles"},
                                 {"a]b", "ab"},        {"[x", ""},
                                 {"ü[ü]ü", "üü"},      {"", ""}};
  for (const TextCase& c : kCases) EXPECT_EQ(_withoutBracketedWords(c.text), c.result) << c.text;
}

}  // namespace
}  // namespace marlune
