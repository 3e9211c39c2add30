#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/temporary_directory.h"
#include "tool/tool_run.h"

namespace marlune {

namespace {

using testing::HasSubstr;

// A private sound server dies while the first line plays, is absent for the second and back for the
// third. The script runs in a new folder, with standard error in "err"; "$@" is the tool.
constexpr const char* kScript = R"(
  trap '' PIPE
  trap 'kill $server $tool 2>/dev/null' EXIT
  export XDG_RUNTIME_DIR="$PWD" HOME="$PWD" SDL_AUDIODRIVER=pulseaudio
  unset PULSE_SERVER
  wait_until() { for i in $(seq 20000); do eval "$1" && return; done; echo "never: $1"; exit 99; }
  start() {
    pulseaudio -n --exit-idle-time=-1 -L module-null-sink -L module-native-protocol-unix \
      >/dev/null 2>&1 & server=$!
    wait_until 'pactl info >/dev/null 2>&1'
  }
  start
  mkfifo in
  "$@" <in & tool=$!
  exec 3>in
  echo "five kilometers in thirty minutes five kilometers in thirty minutes" >&3
  wait_until 'pactl list short sink-inputs | grep -q .'
  kill -9 $server; wait $server
  echo go >&3
  wait_until 'grep -q "line 2:" err'
  start
  echo go >&3
  exec 3>&-
  wait $tool; status=$?
  exit $status
)";

TEST(SayDeviceTest, ADeviceThatIsLostCostsOnlyThePhrasesMeanwhile) {
  if (runProgram("/bin/sh", {"-c", "command -v pulseaudio && command -v pactl"}).status != 0) {
    GTEST_SKIP() << "no PulseAudio server is installed";
  }
  const TemporaryDirectory folder;
  const ToolRun run = runToolIn("cd " + folder.path() + "; exec 2>err; " + kScript,
                                {"say", "--sounds", MARLUNE_VOICE_FOLDER});
  const std::string err = TemporaryDirectory::contentOf(folder.path("err"));
  EXPECT_THAT(run.out, testing::MatchesRegex("five [^\n]* s\ngo [^\n]* s\ngo [^\n]* s\n"));
  EXPECT_THAT(err, HasSubstr("marlune: line 1: \"five kilometers in thirty minutes five kilometers "
                             "in thirty minutes\": it was not played completely: "));
  EXPECT_THAT(err, HasSubstr("marlune: line 2: \"go\": it was not played completely: "));
  EXPECT_THAT(err, testing::Not(HasSubstr("line 3:")));
  EXPECT_EQ(run.status, 1);
}

}  // namespace

}  // namespace marlune
