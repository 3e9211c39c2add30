#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "support/temporary_directory.h"
#include "tool/tool_run.h"

namespace marlune {

namespace {

using testing::HasSubstr;
using testing::StartsWith;

// A folder of empty recordings, which is enough if nothing is played, and an optional overrides
// file.
class DecomposeCommandTest : public testing::Test {
 protected:
  DecomposeCommandTest() {
    for (const char* name :
         {"at", "finish", "finish[x]", "at_the", "the_finish", "go", "good_job", "job_done"}) {
      folder.write(std::string(name) + ".aif", "");
    }
  }

  ToolRun decompose(std::vector<std::string> arguments, const std::string& input = "") const {
    std::vector<std::string> all{"decompose", "--sounds", folder.path()};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return runTool(all, input);
  }

  std::string overridesOf(const std::string& plistBody) const {
    return folder.write("overrides.plist",
                        "<?xml version=\"1.0\"?><plist version=\"1.0\">" + plistBody + "</plist>");
  }

  TemporaryDirectory folder;
};

TEST_F(DecomposeCommandTest, AnswersALineForALine) {
  struct Case {
    const char* why;
    std::vector<std::string> phrases;
    const char* input;
    const char* out;
    const char* err;
    int status;
  };
  const Case cases[] = {
      {"the longest leading recordings win", {"at the finish"}, "", "at_the finish\n", "", 0},
      {"each argument is a phrase", {"go", "at  finish"}, "unread\n", "go\nat finish\n", "", 0},
      {"blanks, tabs and carriage returns part words, and a last line may lack its end",
       {},
       "go\t at\r\n  finish[x]",
       "go at\nfinish[x]\n",
       "",
       0},
      {"a failure gives an empty line, the reason with its line, and the run goes on",
       {},
       "go\ngo flib go flab flib\nat\n",
       "go\n\nat\n",
       "marlune: line 2: \"go flib go flab flib\": no recording of \"flib\", \"flab\"\n",
       1},
      {"only the words that no recording covers are missing",
       {"good job flib"},
       "",
       "\n",
       "marlune: \"good job flib\": no recording of \"flib\"\n",
       1},
      {"words that recordings cover which do not go together",
       {"good job done"},
       "",
       "\n",
       "marlune: \"good job done\": no separate recording of \"done\"\n",
       1},
      {"words with the key of others that cannot be said",
       {},
       "at_go\nat go\n",
       "\n\n",
       "marlune: line 1: \"at_go\": no recording of \"at_go\"\n"
       "marlune: line 2: \"at go\": another phrase with the same key, its words joined by \"_\", "
       "cannot be said\n",
       1},
      {"nothing to say", {}, "\n", "\n", "marlune: line 1: \"\": there is nothing to say\n", 1},
      {"no phrase at all", {}, "", "", "", 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.why);
    const ToolRun run = decompose(c.phrases, c.input);
    EXPECT_EQ(run.out, c.out);
    EXPECT_EQ(run.err, c.err);
    EXPECT_EQ(run.status, c.status);
  }
}

TEST_F(DecomposeCommandTest, AsksTheOverridesFirst) {
  const std::string overrides = overridesOf(
      "<dict><key>whole</key><dict>"
      "<key>at_go</key><array><string>go</string><string>at</string></array>"
      "<key>go_go</key><array><string>missing</string></array></dict>"
      "<key>parts</key><dict><key>flib</key><array><string>finish</string></array></dict></dict>");
  const ToolRun run =
      decompose({"--overrides", overrides}, "at go\nat go at\nflib at\ngo go\nflib\n");
  // The first answer for a key is kept: "at go" comes back as a part of the second phrase.
  EXPECT_EQ(run.out, "go at\ngo at at\nfinish at\n\nfinish\n");
  EXPECT_EQ(run.err,
            "marlune: line 4: \"go go\": the overrides name recordings that do not exist: "
            "\"missing\"\n");
  EXPECT_EQ(run.status, 1);
}

TEST_F(DecomposeCommandTest, TellsWhenTheOverridesAreTooLong) {
  const std::string overrides = overridesOf(
      "<dict><key>parts</key><dict>"
      "<key>at</key><array><string>go</string><string>at</string></array></dict></dict>");
  EXPECT_EQ(decompose({"--overrides", overrides, "at go"}).err,
            "marlune: \"at go\": the overrides use more recordings than there are words\n");
}

TEST_F(DecomposeCommandTest, RefusesOverridesThatMakeNoSenseInOneSentence) {
  struct Case {
    const char* body;
    const char* cause;
  };
  const Case cases[] = {
      {"<array/>", "expected a dictionary with \"whole\" and \"parts\", found an array"},
      {"<dict><key>whole</key><true/></dict>", "whole: expected a dictionary, found a boolean"},
      {"<dict><key>wohle</key><dict/></dict>", "wohle: the tables are \"whole\" and \"parts\""},
      {"<dict><key>parts</key><dict><key>a_b</key><string>a</string></dict></dict>",
       "parts.a_b: expected an array of recordings' names, found a string"},
      {"<dict><key>parts</key><dict><key>a</key><array><string>a</string><integer>1</integer>"
       "</array></dict></dict>",
       "parts.a[1]: expected a recording's name, found a number"},
      {"<dict><key>parts</key><dict><key>a b</key><array/></dict></dict>",
       "parts.a b: no phrase has this key"},
      {"<dict><key>parts</key><dict><key>a_[x]</key><array/></dict></dict>",
       "parts.a_[x]: no phrase has this key"},
      {"<dict>", "line 1"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.body);
    const std::string overrides = overridesOf(c.body);
    const ToolRun run = decompose({"--overrides", overrides, "go"});
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, StartsWith("marlune: " + overrides + ": "));
    EXPECT_THAT(run.err, HasSubstr(c.cause));
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1);
    EXPECT_EQ(run.status, 2);
  }
}

TEST(ToolTest, RefusesWhatItCannotUse) {
  const TemporaryDirectory empty;
  struct Case {
    const char* why;
    std::vector<std::string> arguments;
    std::string err;
  };
  const Case cases[] = {
      {"no command", {}, "a command is needed"},
      {"an unknown command", {"sing"}, "sing"},
      {"no folder", {"decompose", "go"}, "--sounds is required"},
      {"an unknown option", {"decompose", "--sounds", empty.path(), "--loud"}, "--loud"},
      {"no such folder",
       {"decompose", "--sounds", empty.path("none"), "go"},
       empty.path("none") + ": No such file or directory"},
      {"a folder without recordings",
       {"decompose", "--sounds", empty.path(), "go"},
       empty.path() + ": this folder contains no recordings"},
      {"a file for a folder",
       {"decompose", "--sounds", MARLUNE_TOOL_PATH, "go"},
       "Not a directory"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.why);
    const ToolRun run = runTool(c.arguments);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr(c.err));
    EXPECT_EQ(run.status, 2);
  }
}

}  // namespace

}  // namespace marlune
