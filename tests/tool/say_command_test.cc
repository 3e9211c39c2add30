#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "support/temporary_directory.h"
#include "tool/tool_run.h"

namespace marlune {

namespace {

using testing::HasSubstr;

constexpr int kHeaderOfWav = 44;  // bytes before the samples

class SayCommandTest : public testing::Test {
 protected:
  ToolRun say(const std::vector<std::string>& arguments, const std::string& input = "") const {
    std::vector<std::string> all{"say", "--sounds", sounds, "--output", output};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return runTool(all, input);
  }

  std::string samples() const {
    const std::string file = TemporaryDirectory::contentOf(output);
    return file.size() < kHeaderOfWav ? "" : file.substr(kHeaderOfWav);
  }

  TemporaryDirectory folder;
  std::string sounds = MARLUNE_VOICE_FOLDER;
  std::string output = folder.path("out.wav");
};

TEST_F(SayCommandTest, RendersAllPhrasesInARowAndShowsTheirFiles) {
  EXPECT_EQ(say({"ten kilometers"}).status, 0);
  const std::string first = samples();
  EXPECT_EQ(say({"good_job"}).status, 0);
  const std::string second = samples();

  const ToolRun both = say({}, "ten kilometers\nflib\ngood_job\n");
  EXPECT_EQ(samples(), first + second);
  EXPECT_THAT(both.out,
              testing::MatchesRegex("ten kilometers \\| ten_kilometers [0-9.]+: [0-9.]+ s\n"
                                    "\n"
                                    "good_job \\| good_job [0-9.]+: [0-9.]+ s\n"));
  EXPECT_EQ(both.err, "marlune: line 2: \"flib\": no recording of \"flib\"\n");
  EXPECT_EQ(both.status, 1);
}

TEST_F(SayCommandTest, AnAiffFileMayHaveTheLongEnding) {
  output = folder.path("out.aif");
  EXPECT_EQ(say({"go"}).status, 0);
  const std::string expected = TemporaryDirectory::contentOf(output);
  output = folder.path("out.aiff");
  EXPECT_EQ(say({"go"}).err, "");
  EXPECT_TRUE(TemporaryDirectory::contentOf(output) == expected);
}

TEST_F(SayCommandTest, RewritesBeforeItSays) {
  const std::string grammar = folder.write("grammar.plist", R"(<?xml version="1.0"?>
    <plist version="1.0"><dict><key>Main</key><dict><key>_order</key><integer>0</integer>
      <key>_lhs</key><dict><key>_significantSlots</key><array><string>km</string></array></dict>
      <key>_rhs</key><array><string>kilometers</string></array>
    </dict></dict></plist>)");
  const ToolRun run = say({"--grammar", grammar, "--name", "Main", "five km"});
  EXPECT_THAT(run.out, testing::StartsWith("five kilometers | five_kilometers "));
  EXPECT_EQ(run.status, 0);
}

TEST_F(SayCommandTest, RefusesAPhraseWithARecordingThatCannotBePlayed) {
  sounds = folder.path();
  folder.write("broken.aif", "FORM");
  std::filesystem::copy(std::string(MARLUNE_VOICE_FOLDER) + "/go.aif", folder.path("go.aif"));
  const ToolRun run = say({"broken go", "go"});
  EXPECT_THAT(run.err,
              testing::StartsWith("marlune: \"broken go\": broken.aif cannot be played: "));
  EXPECT_THAT(run.out, testing::StartsWith("\ngo | go "));
  EXPECT_EQ(run.status, 1);
}

TEST_F(SayCommandTest, ARecordingThatIsCutOffIsPlayedAndNotCountedAsSaid) {
  const std::string whole = TemporaryDirectory::contentOf(sounds + "/go.aif");
  sounds = folder.path();
  folder.write("go.aif", whole);
  ASSERT_EQ(say({"go"}).status, 0);
  const std::string all = samples();
  folder.write("go.aif", whole.substr(0, whole.size() - 2'000));

  const ToolRun run = say({"go", "flib"});
  EXPECT_TRUE(samples() == all.substr(0, all.size() - 2'000));
  EXPECT_THAT(run.err,
              HasSubstr("marlune: \"go\": it was not played completely: \"go.aif\": the file is "
                        "truncated: 1000 frames are missing\n"));
  EXPECT_EQ(run.status, 1);
}

TEST_F(SayCommandTest, LeavesARecordingOfAnotherRateOutWhereNoResamplerCanBeLoaded) {
  sounds = folder.path();
  std::string go = TemporaryDirectory::contentOf(std::string(MARLUNE_VOICE_FOLDER) + "/go.aif");
  folder.write("slow.aif", go);
  go.replace(go.find("\x40\x0D\xAC\x44"), 2, "\x40\x0E");  // exponent of 22,050
  folder.write("fast.aif", go);
  EXPECT_EQ(say({"slow fast"}).err, "");
  const std::size_t withBoth = samples().size();
  folder.write("libsoxr.so.0", "This is no library.");
  ::setenv("LD_LIBRARY_PATH", folder.path().c_str(), /*overwrite=*/1);
  const ToolRun run = say({"slow fast"});
  ::unsetenv("LD_LIBRARY_PATH");
  EXPECT_THAT(run.err, HasSubstr("fast.aif\" cannot be played and is left out: it cannot be "
                                 "resampled: " +
                                 folder.path("libsoxr.so.0")));
  EXPECT_EQ(samples().size(), withBoth * 2 / 3);  // half of its length is missing
  EXPECT_THAT(run.err,
              HasSubstr("marlune: \"slow fast\": it was not played completely: \"fast.aif\": "));
  EXPECT_EQ(run.status, 1);
}

TEST_F(SayCommandTest, NeedsTheSoundFileLibraryForUnusualRecordingsOnly) {
  sounds = folder.path();
  std::string go = TemporaryDirectory::contentOf(std::string(MARLUNE_VOICE_FOLDER) + "/go.aif");
  folder.write("plain.aif", go);
  go.replace(go.find("\x40\x0D\xAC\x44") - 1, 1, "\x08");  // bits a sample
  folder.write("unusual.aif", go);
  EXPECT_EQ(say({"unusual", "plain"}).err, "");
  folder.write("libsndfile.so.1", "This is no library.");
  ::setenv("LD_LIBRARY_PATH", folder.path().c_str(), /*overwrite=*/1);
  const ToolRun run = say({"unusual", "plain"});
  ::unsetenv("LD_LIBRARY_PATH");
  EXPECT_THAT(run.err, testing::StartsWith("marlune: \"unusual\": unusual.aif cannot be played: "
                                           "libsndfile cannot be loaded to read it: " +
                                           folder.path("libsndfile.so.1")));
  EXPECT_THAT(run.out, testing::StartsWith("\nplain | plain "));
  EXPECT_EQ(run.status, 1);
}

TEST_F(SayCommandTest, AnOverrideMaySayNothing) {
  const std::string overrides = folder.write(
      "overrides.plist",
      "<plist><dict><key>whole</key><dict><key>hush</key><array/></dict></dict></plist>");
  const ToolRun run = say({"--overrides", overrides, "hush", "go"});
  EXPECT_THAT(run.out, testing::StartsWith("hush | : 0.00 s\ngo | go "));
  EXPECT_EQ(run.status, 0);
}

TEST_F(SayCommandTest, RefusesAnOutputThatItCannotMake) {
  struct Case {
    std::string output;
    const char* cause;
  };
  const Case cases[] = {
      {folder.path("out.mp3"), "must be a file *.wav or *.aif"},
      {folder.path("none/out.wav"), "there is no folder"},
      {"/dev/full/out.wav", "there is no folder"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.output);
    output = c.output;
    const ToolRun run = say({"go"});
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr("marlune: " + c.output + ": "));
    EXPECT_THAT(run.err, HasSubstr(c.cause));
    EXPECT_EQ(run.status, 2);
  }
}

TEST_F(SayCommandTest, TellsThatTheLastOfTheOutputCannotBeWritten) {
  rlimit former = {};
  ::getrlimit(RLIMIT_FSIZE, &former);
  const rlimit fewBytes = {8'000, former.rlim_max};  // the recording has 13,000
  ::setrlimit(RLIMIT_FSIZE, &fewBytes);
  const ToolRun run = say({"go"});
  ::setrlimit(RLIMIT_FSIZE, &former);
  EXPECT_EQ(run.err, "marlune: The sound file \"" + output +
                         "\" cannot be written any further: File too large. The part written so "
                         "far is in \"" +
                         output + ".partial\".\n");
  EXPECT_EQ(run.status, 2);
  EXPECT_FALSE(std::filesystem::exists(output));
  EXPECT_EQ(std::filesystem::file_size(output + ".partial"), 8'000u);
}

TEST_F(SayCommandTest, WritesNoMessagesIntoTheOutputWhereStandardErrorIsClosed) {
  const std::string input = "go\nflib\ngo\n";
  say({}, input);
  const std::string expected = TemporaryDirectory::contentOf(output);
  const ToolRun run = runProgram("/bin/sh",
                                 {"-c", "exec \"$0\" say --sounds \"$1\" --output \"$2\" 2>&-",
                                  MARLUNE_TOOL_PATH, sounds, output},
                                 input);
  EXPECT_EQ(run.status, 1);
  EXPECT_TRUE(TemporaryDirectory::contentOf(output) == expected);
}

TEST_F(SayCommandTest, RefusesToReplaceARecordingOfTheVoice) {
  sounds = folder.path();
  const std::string recording = folder.path("go.aif");
  std::filesystem::copy(std::string(MARLUNE_VOICE_FOLDER) + "/go.aif", recording);
  const std::string content = TemporaryDirectory::contentOf(recording);
  std::filesystem::create_symlink("go.aif", folder.path("symbolic.wav"));
  std::filesystem::create_hard_link(recording, folder.path("hard.wav"));
  for (const std::string name : {"go.aif", "symbolic.wav", "hard.wav"}) {
    output = folder.path(name);
    const ToolRun run = say({"go"});
    EXPECT_EQ(run.status, 2) << name;
    EXPECT_EQ(run.err,
              "marlune: " + output + ": this is a recording of the voice, " + recording + "\n");
    EXPECT_TRUE(TemporaryDirectory::contentOf(output) == content) << name;
  }
  output = folder.write("out.wav", "a former rendering");
  EXPECT_EQ(say({"go"}).status, 0) << "a file of another type may stand beside the recordings";
}

TEST_F(SayCommandTest, KeepsAnInterruptedRenderingAsADraft) {
  folder.write("out.wav", "former");
  const ToolRun run = runProgram("/bin/sh", {"-c", R"(cd "$1" && mkfifo in answers
        "$0" say --sounds "$2" --output out.wav <in >answers &
        exec 3>in 4<answers
        echo five_kilometers >&3; read -r line <&4
        echo go >&3; read -r line <&4
        kill -TERM $!; wait $!)",
                                             MARLUNE_TOOL_PATH, folder.path(), sounds});
  EXPECT_EQ(run.status, 128 + SIGTERM);
  EXPECT_THAT(run.err, HasSubstr("marlune: interrupted; the part that was rendered is in "
                                 "out.wav.partial\n"));
  EXPECT_EQ(TemporaryDirectory::contentOf(output), "former");
  const std::string draft = TemporaryDirectory::contentOf(output + ".partial");
  ASSERT_GT(draft.size(), 40'000u) << "the first phrase is whole";
  std::uint32_t claimed = 0;
  std::memcpy(&claimed, draft.data() + 4, sizeof claimed);
  EXPECT_EQ(claimed, draft.size() - 8);
}

TEST_F(SayCommandTest, NeedsAGrammarAndItsNameTogether) {
  EXPECT_EQ(say({"--grammar", "x.plist", "go"}).status, 2);
  EXPECT_EQ(say({"--name", "Main", "go"}).status, 2);
}

}  // namespace

}  // namespace marlune
