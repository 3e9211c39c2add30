#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/temporary_directory.h"
#include "tool/tool_run.h"

namespace marlune {

namespace {

using testing::EndsWith;

// "über" with a composed letter, and as "u" with a combining mark.
constexpr const char* kComposed =
    "\xC3\xBC"
    "ber";
constexpr const char* kDecomposed =
    "u\xCC\x88"
    "ber";

class UnicodeInputTest : public testing::Test {
 protected:
  UnicodeInputTest() {
    for (const char* name : {kComposed, "go", "Go", "at", "\xC3\x89t\xC3\xA9"}) {
      folder.write(std::string(name) + ".aif", "");
    }
  }

  std::string list(const std::string& body) const {
    return folder.write("list.plist", "<plist><dict>" + body + "</dict></plist>");
  }

  ToolRun decompose(std::vector<std::string> arguments, const std::string& input = "") const {
    arguments.insert(arguments.begin(), {"decompose", "--sounds", folder.path()});
    return runTool(arguments, input);
  }

  TemporaryDirectory folder;
  const std::string composed = kComposed, decomposed = kDecomposed;
};

TEST_F(UnicodeInputTest, APhraseMayComeInEitherNormalForm) {
  EXPECT_EQ(decompose({decomposed}).out, composed + "\n");
  // A word that is not UTF-8 does not affect the others.
  EXPECT_EQ(decompose({}, decomposed + " go\n\xFF " + decomposed + "\n").out, composed + " go\n\n");
}

TEST_F(UnicodeInputTest, ListsMayBeInEitherNormalForm) {
  const std::string overrides =
      list("<key>whole</key><dict><key>at_" + decomposed + "</key><array><string>" + decomposed +
           "</string></array></dict>");
  EXPECT_EQ(decompose({"--overrides", overrides, "at " + composed}).out, composed + "\n");

  const std::string grammar =
      list("<key>" + decomposed + "</key><dict><key>_lhs</key><dict><key>_significantSlots</key>" +
           "<array><string>" + decomposed + "</string></array></dict><key>_rhs</key>" +
           "<array><string>over</string></array></dict>");
  for (const std::string& form : {composed, decomposed}) {
    const ToolRun run = runTool({"rewrite", "--grammar", grammar, "--name", form, composed});
    EXPECT_EQ(run.out, "over\n") << run.err;
  }
}

TEST_F(UnicodeInputTest, AWordThatDiffersFromARecordingByCaseGetsAHint) {
  struct Case {
    const char* phrase;
    const char* end;
  };
  const Case cases[] = {
      {"AT", "no recording of \"AT\"; \"at\" differs only by case\n"},
      {"GO at flib", "no recording of \"GO\", \"flib\"; \"Go\", \"go\" differ only by case\n"},
      {"\xC3\xA9T\xC3\x89",
       "no recording of \"\xC3\xA9T\xC3\x89\"; \"\xC3\x89t\xC3\xA9\" differs only by case\n"},
      {"ati", "no recording of \"ati\"\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.phrase);
    EXPECT_THAT(decompose({c.phrase}).err, EndsWith(c.end));
  }
}

}  // namespace

}  // namespace marlune
