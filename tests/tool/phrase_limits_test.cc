#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "support/temporary_directory.h"
#include "tool/tool_run.h"

namespace marlune {

namespace {

constexpr std::size_t kMostBytes = 16U << 20U;

ToolRun decompose(const std::string& input) {
  return runTool({"decompose", "--sounds", MARLUNE_VOICE_FOLDER}, input);
}

TEST(PhraseLimitsTest, ALineThatIsTooLongFailsAlone) {
  std::string words;
  for (int i = 0; i <= 1'000'000; ++i) words += "g ";
  const std::string blanks(kMostBytes - 2, ' ');
  const ToolRun run =
      decompose("go\n" + words + "\n" + blanks + "go\n" + blanks + "go \ngo\n" + blanks + "  at");
  EXPECT_EQ(run.out, "go\n\ngo\n\ngo\n\n");
  EXPECT_EQ(run.err,
            "marlune: line 2: it has more than 1,000,000 words\n"
            "marlune: line 4: it is longer than 16 MiB\n"
            "marlune: line 6: it is longer than 16 MiB\n");
  EXPECT_EQ(run.status, 1);
}

// The rule turns one word into 101; a phrase may have 10,000 slots.
TEST(PhraseLimitsTest, APhraseThatARuleMakesTooLongFailsAlone) {
  std::string many;
  for (int i = 0; i < 101; ++i) many += "<string>b</string>";
  const TemporaryDirectory folder;
  const std::string grammar = folder.write(
      "grammar.plist",
      "<plist><dict><key>Main</key><dict><key>_lhs</key><dict><key>_significantSlots</key>"
      "<array><string>a</string></array></dict><key>_rhs</key><array>" +
          many + "</array></dict></dict></plist>");
  std::string words;
  for (int i = 0; i < 200; ++i) words += "a ";
  for (const char* trace : {"", "--trace"}) {
    std::vector<std::string> arguments{"rewrite", "--grammar", grammar, "--name", "Main"};
    if (*trace) arguments.emplace_back(trace);
    const ToolRun run = runTool(arguments, "c\n" + words + "\nc\n");
    EXPECT_EQ(run.out, "c\n\nc\n");
    EXPECT_THAT(run.err, testing::HasSubstr("\nmarlune: line 2: \"a a "));
    EXPECT_THAT(run.err,
                testing::HasSubstr("\": a rule would make it longer than a phrase may be"));
    EXPECT_EQ(run.status, 1);
  }
}

#ifdef MARLUNE_TOOL_RUNS_IN_LITTLE_MEMORY
TEST(PhraseLimitsTest, APhraseThatMemoryDoesNotSufficeForFailsAlone) {
  std::string words;
  for (int i = 0; i < 900'000; ++i) words += "go ";
  const ToolRun run =
      runToolIn("ulimit -v 40000; exec \"$@\"", {"decompose", "--sounds", MARLUNE_VOICE_FOLDER},
                "go\n" + words + "\ngo\n");
  EXPECT_EQ(run.out, "go\n\ngo\n");
  EXPECT_THAT(run.err, testing::StartsWith("marlune: line 2: "));
  EXPECT_THAT(run.err, testing::EndsWith("there is not enough memory for it\n"));
  EXPECT_EQ(run.status, 1);
}
#endif

// The reason quotes the phrase and the missing words.
TEST(PhraseLimitsTest, AMessageAboutALongPhraseIsShort) {
  std::string words;
  for (int i = 0; i < 600; ++i) words += "w" + std::to_string(i) + " ";
  const ToolRun run = decompose(words + "\n" + std::string(100'000, 'x') + "\n");
  EXPECT_EQ(run.out, "\n\n");
  EXPECT_THAT(run.err, testing::HasSubstr(" ...\": no recording of \"w0\", \"w1\", "));
  EXPECT_LT(run.err.size(), 6'000U);
}

TEST(PhraseInputTest, AByteOrderMarkAtTheStartIsNoPartOfAWord) {
  EXPECT_EQ(decompose("\xEF\xBB\xBFgo\n").out, "go\n");
  EXPECT_EQ(decompose("go\n\xEF\xBB\xBFgo\n").status, 1);
}

}  // namespace

}  // namespace marlune
