#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "support/temporary_directory.h"
#include "tool/tool_run.h"

namespace marlune {

namespace {

using testing::HasSubstr;

constexpr const char* kGrammar = R"(<?xml version="1.0"?><plist version="1.0"><dict>
  <key>Main</key><dict>
    <key>_order</key><integer>0</integer>
    <key>Speed</key><dict>
      <key>_order</key><integer>1</integer>
      <key>_lhs</key><dict><key>_significantSlots</key><array><string>mph</string></array></dict>
      <key>_rhs</key><array><string>miles</string></array></dict>
    <key>Units</key><dict>
      <key>_order</key><integer>2</integer>
      <key>_lhs</key><dict><key>_significantSlots</key><array><string>km</string></array>
        <key>_preContext</key><array><string>?</string></array></dict>
      <key>_rhs</key><array><string>kilometers</string></array></dict>
  </dict>
  <key>Broken</key><dict>
    <key>Units</key><dict>
      <key>_lhs</key><dict><key>_significantSlots</key><array><array/></array></dict>
      <key>_rhs</key><array><string>a</string></array></dict>
  </dict>
  <key>Nested</key><dict>
    <key>Lengths</key><dict>
      <key>_order</key><integer>1</integer>
      <key>Mark</key><dict>
        <key>_order</key><integer>1</integer>
        <key>_lhs</key><dict>
          <key>_significantSlots</key><array><dict><key>#x-</key><string>k</string></dict></array>
          <key>_postContext</key>
          <array><array><string>~</string><string>h</string><string>_E</string></array></array></dict>
        <key>_rhs</key><array><dict>
          <key>_index</key><integer>0</integer><key>kind</key><string>unit</string>
          <key>pre</key><string>x</string></dict></array></dict>
      <key>Outside</key><dict>
        <key>_order</key><integer>2</integer>
        <key>_lhs</key><dict><key>_significantSlots</key>
          <array><dict><key>kind</key><string>unit</string></dict></array></dict>
        <key>_rhs</key><array><dict><key>_index</key><integer>1</integer></dict></array></dict>
      <key>Spell</key><dict>
        <key>_order</key><integer>3</integer>
        <key>_lhs</key><dict><key>_significantSlots</key>
          <array><dict><key>kind</key><string>unit</string></dict></array></dict>
        <key>_rhs</key><dict>
          <key>_signature</key><array><dict>
            <key>_index</key><integer>0</integer>
            <key>_attribute</key><string>content</string></dict></array>
          <key>_expansions</key><dict>
            <key>km</key><array><string>kilometers</string></array>
            <key>kg</key><array><string>kilograms</string></array></dict></dict></dict>
    </dict>
    <key>Bare</key><dict>
      <key>_order</key><integer>2</integer>
      <key>_lhs</key><dict><key>_significantSlots</key><array><string>?</string></array></dict>
      <key>_rhs</key><string>nothing</string></dict>
  </dict>
  <key>Twice</key><dict>
    <key>A</key><dict><key>Units</key><dict>
      <key>_lhs</key><dict><key>_significantSlots</key><array><string>km</string></array></dict>
      <key>_rhs</key><array><string>km</string></array></dict></dict>
    <key>B</key><dict><key>Units</key><dict>
      <key>_lhs</key><dict/>
      <key>_rhs</key><array><string>km</string></array></dict></dict>
  </dict>
  <key>Many</key><dict>
    <key>_lhs</key><dict><key>_significantSlots</key><array><array><string>+</string>
      <string>1</string><string>2</string><string>3</string><string>4</string><string>5</string>
      <string>6</string><string>7</string><string>8</string><string>9</string><string>10</string>
    </array></array></dict>
    <key>_rhs</key><array><string>few</string></array></dict>
  <key>Text</key><string>no grammar</string>
</dict></plist>)";

class RewriteCommandTest : public testing::Test {
 protected:
  ToolRun rewrite(const std::vector<std::string>& arguments, const std::string& input = "") const {
    std::vector<std::string> all{"rewrite", "--grammar", grammar};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return runTool(all, input);
  }

  TemporaryDirectory folder;
  const std::string grammar = folder.write("grammar.plist", kGrammar);
};

TEST_F(RewriteCommandTest, AnswersALineForALine) {
  const ToolRun lines = rewrite({"--name", "Main"}, "ten km\n\nnothing to do\n");
  EXPECT_EQ(lines.out, "ten kilometers\n\nnothing to do\n");
  EXPECT_EQ(lines.err, "");
  EXPECT_EQ(lines.status, 0);
  EXPECT_EQ(rewrite({"--name", "Main", "2 km", "3 km"}).out, "2 kilometers\n3 kilometers\n");
  EXPECT_EQ(rewrite({"--name", "Main.Units", "2 km"}).out, "2 kilometers\n");
}

TEST_F(RewriteCommandTest, TracesTheRulesThatChangeThePhrase) {
  EXPECT_EQ(rewrite({"--name", "Main", "--trace", "ten km"}).err,
            "_E.([ten]).([km])._E\n"
            "  Units (2): ([km]) after ?\n"
            "    _E.([ten]).([kilometers])._E\n"
            "1 of 2 rules changed the phrase\n");
  EXPECT_EQ(rewrite({"--name", "Main.Units", "--trace", "a km"}).err,
            "_E.([a]).([km])._E\n"
            "  ROOT (2): ([km]) after ?\n"
            "    _E.([a]).([kilometers])._E\n"
            "1 of 1 rule changed the phrase\n");
  const ToolRun raw = rewrite({"--name", "Main", "--trace=raw", "ten km"});
  EXPECT_THAT(raw.err, HasSubstr("\nApplying 'Units' (2): "));
  EXPECT_THAT(raw.err, HasSubstr("\nMidway Result: "));
  EXPECT_EQ(raw.out, "ten kilometers\n");
}

TEST_F(RewriteCommandTest, TracesAttributesAndMessagesUnderTheRuleTheyComeFrom) {
  const ToolRun run = rewrite({"--name", "Nested", "--trace", "a km now"});
  EXPECT_EQ(
      run.err,
      "_E.([a]).([km]).([now])._E\n"
      "  Lengths.Mark (1): ([_]){#x-=k} before ~(([h]) + _E)\n"
      "    _E.([a]).(x[km]){kind=unit}.([now])._E\n"
      "  Lengths.Outside (2): ([_]){kind=unit}\n"
      "    ERROR: The occurrence at 2 stays as it is: production's index 1 outside the 1 slots "
      "of the occurrence.\n"
      "  Lengths.Spell (3): ([_]){kind=unit}\n"
      "    _E.([a]).([kilometers]).([now])._E\n"
      "2 of 4 rules changed the phrase\n");
  EXPECT_EQ(run.out, "a kilometers now\n");
}

TEST_F(RewriteCommandTest, TellsWhyARuleDoesOrDoesNotFire) {
  struct Case {
    const char* name;
    const char* rule;
    const char* phrase;
    const char* why;
  };
  const Case cases[] = {
      {"Nested", "Mark", "a mi",
       "Lengths.Mark (1) at its turn: _E.([a]).([mi])._E\n"
       "  its significant slots ([_]){#x-=k} were not found\n"},
      {"Main", "Units", "km km",
       "Units (2) at its turn: _E.([km]).([km])._E\n"
       "  found at 1, ([km]), but the pre-context ? does not precede it\n"
       "  applies at 2, ([km])\n"
       "  the phrase became _E.([km]).([kilometers])._E\n"},
      {"Main.Units", "Units", "a mi",
       "ROOT (2) at its turn: _E.([a]).([mi])._E\n"
       "  its significant slots ([km]) were not found\n"},
      {"Nested", "Lengths.Mark", "km h",
       "Lengths.Mark (1) at its turn: _E.([km]).([h])._E\n"
       "  found at 1, ([km]), but the post-context ~(([h]) + _E) does not follow it\n"},
      {"Nested", "Mark", "km now",
       "Lengths.Mark (1) at its turn: _E.([km]).([now])._E\n"
       "  applies at 1, ([km])\n"
       "  the phrase became _E.(x[km]){kind=unit}.([now])._E\n"
       "  its result was replaced later by Lengths.Spell (3)\n"},
      {"Nested", "Nested.Lengths.Spell", "kx now",
       "Lengths.Spell (3) at its turn: _E.(x[kx]){kind=unit}.([now])._E\n"
       "  applies at 1, (x[kx]){kind=unit}, but the conditional key \"kx\" has no expansion "
       "(it has: km, kg)\n"},
      {"Nested", "Outside", "kg now",
       "Lengths.Outside (2) at its turn: _E.(x[kg]){kind=unit}.([now])._E\n"
       "  applies at 1, (x[kg]){kind=unit}\n"
       "  ERROR: The occurrence at 1 stays as it is: production's index 1 outside the 1 slots of "
       "the occurrence.\n"
       "  the phrase did not change\n"},
      {"Nested", "Bare", "a", "Bare (2) at its turn: _E.([a])._E\n  has no right-hand side\n"},
      {"Many", "Many", "a",
       "  its significant slots (([1]) + ([2]) + ([3]) + ([4]) + ([5]) + ([6]) + ([7]) + ([8]) + "
       "2 more) were not found\n"},
      {"Twice", "Units", "km",
       "A.Units (0) at its turn: _E.([km])._E\n"
       "  applies at 1, ([km])\n"
       "  the phrase did not change\n"
       "B.Units (0) at its turn: _E.([km])._E\n"
       "  has no significant slots\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.name) + " " + c.rule + " " + c.phrase);
    const ToolRun run = rewrite({"--name", c.name, "--why", c.rule, c.phrase});
    // Log lines of loading and rewriting surround it.
    EXPECT_THAT(run.err, HasSubstr(c.why));
    EXPECT_EQ(run.out, rewrite({"--name", c.name, c.phrase}).out);
    EXPECT_EQ(run.status, 0);
  }
  for (const char* none : {"Marks", "Lengths", "ark", "Mark.Lengths", ""}) {
    const ToolRun run = rewrite({"--name", "Nested", "--why", none, "a km"});
    EXPECT_EQ(run.err, "marlune: " + grammar + ": Nested has no rule named " + none + "\n");
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.status, 2);
  }
}

TEST_F(RewriteCommandTest, RefusesAGrammarThatDoesNotLoadInOneSentence) {
  struct Case {
    const char* why;
    std::string grammar;
    const char* name;
    std::string cause;
  };
  const std::string cut = folder.write("cut.plist", std::string(kGrammar).substr(0, 200));
  const Case cases[] = {
      {"no file", folder.path("none.plist"), "Main", folder.path("none.plist")},
      {"a file cut off", cut, "Main", cut + ": line "},
      {"a folder", folder.path(), "Main", folder.path()},
      {"no grammar of that name", grammar, "Mian",
       grammar + ": there is no grammar named Mian; did you mean Main or Many?"},
      {"the name of a text", grammar, "Text", grammar + ": there is no grammar named Text"},
      {"a name through a text", grammar, "Text.Main", grammar + ": "},
      {"a broken rule", grammar, "Broken", grammar + ": Broken.Units._lhs._significantSlots[0]"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.why);
    const ToolRun run = runTool({"rewrite", "--grammar", c.grammar, "--name", c.name, "km"});
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, testing::StartsWith("marlune: " + c.cause));
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
    EXPECT_EQ(run.status, 2);
  }
}

}  // namespace

}  // namespace marlune
