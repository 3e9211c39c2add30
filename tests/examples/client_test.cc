#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "examples/worked_lines.h"
#include "marlune/decompose/decomposer.h"
#include "marlune/desktop/services/folder_bundle.h"
#include "support/program_run.h"
#include "support/recordings.h"
#include "support/temporary_directory.h"

namespace marlune {
namespace {

using testing::HasSubstr;

const std::string kGrammar = MARLUNE_SOURCE_DIR "/examples/grammars/workout_en.plist";
const std::string kVoice = MARLUNE_SOURCE_DIR "/examples/voice";

const std::vector<std::string> kSaid = {
    "run one kilometer in five minutes twenty seven seconds[final]",
    "run two kilometers in ten minutes fifty four seconds[final]",
    "run three kilometers in sixteen minutes twenty one seconds[final]",
    "run four kilometers in twenty one minutes forty eight seconds[final]",
    "run five kilometers in twenty seven minutes fifteen seconds[final]"};

class ExampleClientTest : public testing::Test {
 protected:
  static ProgramRun run(const std::vector<std::string>& arguments) {
    return runProgram(MARLUNE_CLIENT_PATH, arguments);
  }

  static std::size_t framesOf(const std::vector<std::string>& phrases) {
    const auto voice = Decomposer::initWithDirectory("", std::make_shared<FolderBundle>(kVoice));
    std::size_t frames = 0;
    for (const std::string& phrase : phrases) {
      for (const std::string& name : *voice->optimalDecompositionOf(wordsOf(phrase))) {
        frames += readSound(kVoice + "/" + name + ".aif").samples.size();
      }
    }
    return frames;
  }

  TemporaryDirectory folder;
  const std::string output = folder.path("out.wav");
};

TEST_F(ExampleClientTest, AnnouncesEveryKilometerAndEndsWhenAllWasHeard) {
  const ProgramRun client = run({kGrammar, kVoice, output});
  std::string lines;
  for (std::size_t i = 0; i < kSaid.size(); ++i) {
    lines += std::to_string(i + 1) + " km: " + kSaid[i] + "\n";
  }
  EXPECT_EQ(client.out, lines);
  EXPECT_EQ(client.err, "");
  EXPECT_EQ(client.status, 0);
  EXPECT_EQ(readSound(output).samples.size(), framesOf(kSaid));
}

TEST_F(ExampleClientTest, ShowsTheLinesThatItsPreferencesAskForOnItsLog) {
  const ProgramRun client = run({kGrammar, kVoice, output, "TQUtilsApplicationTraceDefault"});
  EXPECT_THAT(client.err, HasSubstr("[voice] __sharedPlayQueue creating a new queue player\n"));
  EXPECT_EQ(client.status, 0);
}

TEST_F(ExampleClientTest, SaysWhatFailed) {
  const std::string part = folder.path("part");
  std::filesystem::copy(kVoice, part);
  std::filesystem::remove(part + "/forty.aif");
  const std::string noGrammar = folder.write("other.plist", "<plist><dict/></plist>");
  const std::string broken =
      folder.write("broken.plist",
                   "<plist><dict><key>Workout</key><string>#insert None</string></dict></plist>");
  const struct {
    std::vector<std::string> arguments;
    const char* message;
  } cases[] = {
      {{folder.path("none.plist"), kVoice, output}, "client: no grammar Workout in "},
      {{noGrammar, kVoice, output}, "client: no grammar Workout in "},
      {{broken, kVoice, output}, "client: Workout: "},
      {{kGrammar, folder.path("none"), output}, "client: no voice in "},
      {{kGrammar, part, output}, "client: cannot be said: 4 km: run four kilometers "},
      {{kGrammar, kVoice, folder.path("none/out.wav")}, "cannot be written: No such file"},
      {{kGrammar}, "client: usage: "},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.message);
    const ProgramRun client = run(c.arguments);
    EXPECT_THAT(client.err, HasSubstr(c.message));
    EXPECT_EQ(client.status, 1);
  }
}

}  // namespace
}  // namespace marlune
