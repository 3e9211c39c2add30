#include "marlune/desktop/text/normal_form.h"

#include <gtest/gtest.h>

namespace marlune {
namespace {

struct NormalFormCase {
  std::string_view why, text, composed;
};
const NormalFormCase kNormalFormCases[] = {
    {"nothing", "", ""},
    {"plain text, a NUL included", {"a\0b", 3}, {"a\0b", 3}},
    {"a letter and its mark become one character", "z\u0307o\u0301\u0142w", "\u017C\u00F3\u0142w"},
    {"composed text stays", "\u017C\u00F3\u0142w", "\u017C\u00F3\u0142w"},
    {"marks are put in order, then composed", "a\u0301\u0323", "\u1EA1\u0301"},
    {"marks of one class keep their order", "q\u0302\u0301", "q\u0302\u0301"},
    {"syllables are composed of their letters", "\u1112\u1161\u11AB", "\uD55C"},
    {"a character with an equivalent in ASCII", "5 \u212A", "5 K"},
    {"some characters are only written decomposed", "\u0958", "\u0915\u093C"},
    {"compatibility forms stay apart", "\uFB01\u00B2", "\uFB01\u00B2"},
    {"beyond 16 bits", "\U0001D15E", "\U0001D157\U0001D165"},
    {"a broken sequence leaves all as it is", "e\u0301\xCC", "e\u0301\xCC"},
    {"so does a surrogate", "e\u0301\xED\xA0\x80", "e\u0301\xED\xA0\x80"},
};

TEST(NormalFormTest, LettersAndMarksAreComposed) {
  for (const NormalFormCase& c : kNormalFormCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(inNormalFormC(c.text), c.composed);
    EXPECT_EQ(inNormalFormC(c.composed), c.composed);
  }
}

// 2 MB: a sort that moves each mark past all earlier ones takes hours.
TEST(NormalFormTest, ALongRunOfMarksTakesNoLongerThanOtherText) {
  std::string text = "x", above, below;
  for (int i = 0; i < 500'000; ++i) {
    text += "\u0310\u0325";
    above += "\u0310";
    below += "\u0325";
  }
  EXPECT_TRUE(inNormalFormC(text) == "x" + below + above);
}

}  // namespace
}  // namespace marlune
