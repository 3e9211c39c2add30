#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

#include "support/temporary_directory.h"
#include "tool/tool_run.h"

namespace marlune {

namespace {

using testing::HasSubstr;
using Arguments = std::vector<std::string>;

constexpr const char* kVoice = MARLUNE_VOICE_FOLDER;
constexpr const char* kGrammar = MARLUNE_VOICE_FOLDER "/../grammars/workout_en.plist";

TEST(StandardStreamsTest, AnswersThatCannotBeWrittenEndEveryCommand) {
  const TemporaryDirectory folder;
  const Arguments commands[] = {
      {"--help"},
      {"--version"},
      {"decompose", "--help"},
      {"decompose", "--sounds", kVoice, "go"},
      {"rewrite", "--grammar", kGrammar, "--name", "Workout", "go"},
      {"say", "--sounds", kVoice, "--output", folder.path("out.wav"), "go", "go"},
  };
  struct Case {
    const char* script;
    const char* cause;
  };
  const Case cases[] = {
      {"exec \"$@\" >/dev/full", "no space left on device"},
      {"exec \"$@\" >&-", "bad file descriptor"},
  };
  for (const Arguments& command : commands) {
    for (const Case& c : cases) {
      SCOPED_TRACE(command[0] + " " + c.script);
      const ToolRun run = runToolIn(c.script, command);
      EXPECT_EQ(run.err,
                std::string("marlune: standard output cannot be written: ") + c.cause + "\n");
      EXPECT_EQ(run.status, 2);
    }
  }
}

// A co-process that waits for the answer before it writes the next phrase would wait for ever.
TEST(StandardStreamsTest, AnAnswerIsWrittenBeforeTheToolWaitsForInput) {
  const ToolRun run = runToolIn(
      "folder=$(mktemp -d); mkfifo $folder/in $folder/out; "
      "\"$@\" <$folder/in >$folder/out & exec 3>$folder/in 4<$folder/out; "
      "for phrase in one two; do echo $phrase >&3; read -r answer <&4; echo \"<$answer>\"; done; "
      "exec 3>&-; wait; rm -r $folder",
      {"decompose", "--sounds", kVoice});
  EXPECT_EQ(run.out, "<one>\n<two>\n");
}

TEST(StandardStreamsTest, AnswersAndMessagesKeepTheirOrderInOneStream) {
  std::string input, expected;
  for (int i = 1; i <= 20; ++i) {
    input += "one two\nunknown\n";
    expected += "one two\nmarlune: line " + std::to_string(2 * i) +
                ": \"unknown\": no recording of \"unknown\"\n\n";
  }
  EXPECT_EQ(runToolIn("\"$@\" 2>&1", {"decompose", "--sounds", kVoice}, input).out, expected);
}

TEST(StandardStreamsTest, ThousandsOfMessagesAlikeAreCounted) {
  std::string input;
  for (int i = 0; i < 1'500; ++i) input += "unknown\n";
  const auto lines = [&](Arguments arguments) {
    const std::string text = runTool(arguments, input).err;
    return std::make_pair(std::count(text.begin(), text.end(), '\n'),
                          text.substr(text.rfind('\n', text.size() - 2) + 1));
  };
  EXPECT_EQ(lines({"decompose", "--sounds", kVoice}),
            std::make_pair(1'001l, std::string("marlune: 500 more phrases: no recording of "
                                               "\"unknown\"\n")));
  EXPECT_EQ(lines({"decompose", "--sounds", kVoice, "--verbose"}).first, 1'500);
}

TEST(StandardStreamsTest, AClosedPipeEndsTheRunAsItsSignalDoes) {
  for (const char* former : {"trap - PIPE", "trap '' PIPE"}) {
    SCOPED_TRACE(former);
    const ToolRun run = runToolIn(
        std::string(former) + "; yes go 2>/dev/null | { \"$@\"; echo $? >&2; } | head -n 1",
        {"decompose", "--sounds", kVoice});
    EXPECT_EQ(run.out, "go\n");
    EXPECT_EQ(run.err, "141\n");
  }
}

TEST(StandardStreamsTest, InputThatCannotBeReadIsNotEmptyInput) {
  struct Case {
    const char* script;
    const char* err;
    int status;
  };
  const Case cases[] = {
      {"\"$@\" </", "marlune: standard input cannot be read: is a directory\n", 2},
      {"\"$@\" <&-", "marlune: standard input cannot be read: bad file descriptor\n", 2},
      {"\"$@\" </dev/null", "", 0},
  };
  const TemporaryDirectory folder;
  const Arguments commands[] = {
      {"decompose", "--sounds", kVoice},
      {"rewrite", "--grammar", kGrammar, "--name", "Workout"},
      {"say", "--sounds", kVoice, "--output", folder.path("out.wav")},
  };
  for (const Case& c : cases) {
    for (const Arguments& command : commands) {
      SCOPED_TRACE(command[0] + c.script);
      const ToolRun run = runToolIn(c.script, command);
      EXPECT_EQ(run.out, "");
      EXPECT_EQ(run.err, c.err);
      EXPECT_EQ(run.status, c.status);
    }
  }
}

TEST(StandardStreamsTest, WhatIsWrittenToAClosedStreamLandsInNoFile) {
  const TemporaryDirectory folder;
  const auto rendered = [&](const std::string& name, const std::string& script) {
    runToolIn(script, {"say", "--sounds", kVoice, "--output", folder.path(name), "go", "flib"});
    return TemporaryDirectory::contentOf(folder.path(name));
  };
  const std::string whole = rendered("whole.wav", "\"$@\"");
  EXPECT_EQ(rendered("part.wav", "\"$@\" <&- 2>&-"), whole);
}

TEST(StandardStreamsTest, AnEmptyValueIsAnErrorThatNamesItsOption) {
  struct Case {
    Arguments arguments;
    const char* option;
  };
  const Case cases[] = {
      {{"decompose", "--sounds", "", "go"}, "--sounds"},
      {{"decompose", "--sounds", kVoice, "--overrides", "", "go"}, "--overrides"},
      {{"say", "--sounds", kVoice, "--output", "", "go"}, "--output"},
      {{"say", "--sounds", kVoice, "--output=", "go"}, "--output"},
      {{"say", "--sounds", kVoice, "--grammar", "", "--name", "A", "go"}, "--grammar"},
      {{"rewrite", "--grammar", kGrammar, "--name", "", "go"}, "--name"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.option);
    const ToolRun run = runTool(c.arguments);
    EXPECT_THAT(run.err, HasSubstr(std::string(c.option) + ": the value is empty"));
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.status, 2);
  }
}

}  // namespace

}  // namespace marlune
