#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/temporary_directory.h"
#include "tool/tool_run.h"

namespace marlune {

namespace {

using testing::HasSubstr;
using Arguments = std::vector<std::string>;

// The rule, whose name contains a line feed, never settles; its word contains control characters.
constexpr const char* kGrammar = R"(<?xml version="1.0"?><plist version="1.0"><dict>
  <key>Main</key><dict>
    <key>A&#10;B</key><dict>
      <key>_lhs</key><dict><key>_significantSlots</key><array><string>km</string></array></dict>
      <key>_rhs</key>
      <array><string>a&#10;b&#9;&#x7F;&#x9B;\n&#xA0;</string></array></dict>
  </dict>
  <key>Circle</key><dict>
    <key>A&#10;B</key><dict>
      <key>_repeat</key><true/>
      <key>_lhs</key><dict><key>_significantSlots</key><array>
        <array><string>+</string><string>x</string><string>y</string></array></array></dict>
      <key>_rhs</key><dict>
        <key>_signature</key><array><dict><key>_index</key><integer>0</integer>
          <key>_attribute</key><string>content</string></dict></array>
        <key>_expansions</key><dict>
          <key>x</key><array><string>y</string></array>
          <key>y</key><array><string>x</string></array></dict></dict></dict>
  </dict>
</dict></plist>)";

// U+00A0 is not a control character; backslashes are not escaped.
constexpr const char* kShown = "a\\u{0A}b\\u{09}\\u{7F}\\u{9B}\\n\xC2\xA0";

class ControlCharactersTest : public testing::Test {
 protected:
  ToolRun rewrite(const Arguments& arguments) const {
    Arguments all{"rewrite", "--grammar", grammar, "--name"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return runTool(all);
  }

  TemporaryDirectory folder;
  const std::string grammar = folder.write("grammar.plist", kGrammar);
};

TEST_F(ControlCharactersTest, PrintAsNumbersInAnswers) {
  EXPECT_EQ(rewrite({"Main", "1 km", "\\u{0A} \x1B[31m"}).out,
            std::string("1 ") + kShown + "\n\\u{0A} \\u{1B}[31m\n");
  folder.write("go\x1B\\.aif", "");
  EXPECT_EQ(runTool({"decompose", "--sounds", folder.path(), "go\x1B\\"}).out, "go\\u{1B}\\\n");
}

TEST_F(ControlCharactersTest, PrintAsNumbersInMessages) {
  struct Case {
    Arguments arguments;
    std::string err;
  };
  const Case cases[] = {
      {{"rewrite", "--grammar", grammar, "--name", "Main", "--trace", "km"},
       std::string("_E.([km])._E\n  A\\u{0A}B (0): ([km])\n    _E.([") + kShown + "])._E\n1 of 1"},
      {{"rewrite", "--grammar", grammar, "--name", "Main", "--why", "A\nB", "km"},
       std::string("A\\u{0A}B (0) at its turn: _E.([km])._E\n  applies at 1, ([km])\n"
                   "  the phrase became _E.([") +
           kShown},
      {{"rewrite", "--grammar", grammar, "--name", "Main", "--trace=raw", "\x1Bkm"},
       "(\n    _E,\n    \"([\\u{1B}km])\",\n"},
      {{"rewrite", "--grammar", grammar, "--name", "Circle", "x"},
       "ERROR: The repeating rule 'A\\u{0A}B' stopped after 2 passes"},
      {{"decompose", "--sounds", "no\x1B"}, "marlune: no\\u{1B}: "},
      {{"decompose", "--sounds", MARLUNE_VOICE_FOLDER, "f\x7F"},
       "marlune: \"f\\u{7F}\": no recording of \"f\\u{7F}\"\n"},
      {{"decompose", "--sounds", "x", "--lo\nud"}, "--lo\\u{0A}ud\nRun with --help"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.err);
    const ToolRun run = runTool(c.arguments);
    EXPECT_THAT(run.err, HasSubstr(c.err));
    EXPECT_EQ(run.err.find('\x1B'), std::string::npos);
  }
}

}  // namespace

}  // namespace marlune
