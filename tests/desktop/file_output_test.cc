#include "marlune/desktop/audio/output/file_output.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cmath>
#include <thread>

#include "support/engine_rig.h"
#include "support/platform_fixture.h"

namespace marlune {
namespace {

using Samples = std::vector<short>;

class FileOutputTest : public PlatformFixture {
 protected:
  // Plays the recordings to the file through a new queue.
  static void play(const std::shared_ptr<AudioRoute>& route,
                   const std::vector<std::string>& paths) {
    DesktopAudioSession session(route);
    const auto queue = DesktopQueuePlayer::overRoute(route);
    for (const std::string& path : paths) EngineRig::append(*queue, path);
    EXPECT_EQ(session.setActive(true).error, std::nullopt);
    queue->play();
    queue->waitUntilSettled();
    EXPECT_TRUE(queue->items().empty());
    EXPECT_EQ(session.setActive(false).error, std::nullopt);
  }
  static std::shared_ptr<AudioRoute> routeTo(const std::string& path,
                                             std::optional<AudioFormat> format = std::nullopt) {
    return std::make_shared<AudioRoute>(std::make_shared<FileOutput>(path, format));
  }

  RecordingFolder folder;
};

TEST_F(FileOutputTest, TakesTheFormatOfTheFirstRecordingAndKeepsEverySample) {
  // Every possible 16-bit sample.
  Samples all;
  for (int value = -32'768; value <= 32'767; ++value) all.push_back(static_cast<short>(value));
  const AudioFormat stereo = {22'050, 2};
  const auto path = folder.write("all.aif", all, stereo);
  for (const std::string name : {"x.wav", "x.aif"}) {
    SCOPED_TRACE(name);
    const auto route = routeTo(folder.path(name));
    play(route, {path, path});
    play(route, {path});  // a later phrase is appended
    const Sound sound = readSound(folder.path(name));
    EXPECT_EQ(sound.format, stereo);
    Samples expected = all;
    expected.insert(expected.end(), all.begin(), all.end());
    expected.insert(expected.end(), all.begin(), all.end());
    EXPECT_EQ(sound.samples, expected);
  }
}

TEST_F(FileOutputTest, TheFileKeepsWhatItHeldUntilTheRenderingIsWhole) {
  const auto clip = folder.write("clip.aif", countingSamples(500, 0), {22'050, 1});
  const std::string path = folder.path("x.wav");
  const std::string draft = path + ".partial";
  folder.writeBytes("x.wav", {'o', 'l', 'd'});
  ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
  // The file in the draft's place may have another hard link: it must not be truncated.
  std::filesystem::create_hard_link(clip, draft);
  std::filesystem::create_symlink("x.wav", folder.path("link.wav"));

  const auto output = std::make_shared<FileOutput>(folder.path("link.wav"));
  output->keepDraftUntilFinished();
  play(std::make_shared<AudioRoute>(output), {clip});
  EXPECT_EQ(readBytes(path).size(), 3u);
  EXPECT_EQ(output->draftPath(), draft);
  EXPECT_EQ(readSound(draft).samples, countingSamples(500, 0));

  EXPECT_EQ(output->finish(), std::nullopt);
  EXPECT_EQ(readSound(path).samples, countingSamples(500, 0));
  EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms(0640));
  EXPECT_TRUE(std::filesystem::is_symlink(folder.path("link.wav")));
  EXPECT_FALSE(std::filesystem::exists(draft));
  EXPECT_EQ(readSound(clip).samples, countingSamples(500, 0));
}

TEST_F(FileOutputTest, WritesDevicesAndPipesDirectly) {
  const auto clip = folder.write("clip.aif", countingSamples(500, 0), {22'050, 1});
  const std::string path = folder.path("x.wav");
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  std::vector<char> received;
  std::thread reader([&] { received = readBytes(path); });
  play(routeTo(path), {clip});
  reader.join();
  play(routeTo(folder.path("file.wav")), {clip});
  const std::vector<char> whole = readBytes(folder.path("file.wav"));
  ASSERT_EQ(received.size(), whole.size());
  EXPECT_TRUE(std::equal(received.begin() + 44, received.end(), whole.begin() + 44));
  EXPECT_EQ(std::string(received.begin() + 40, received.begin() + 44),
            std::string("\0\xF0\xFF\x7F", 4))
      << "no length is known";

  std::filesystem::create_symlink("/dev/full", folder.path("full.wav"));
  const auto route = routeTo(folder.path("full.wav"));
  DesktopAudioSession session(route);
  EXPECT_EQ(session.setActive(true).error, std::nullopt);
  session.setActive(false);
  EXPECT_EQ(route->output()->loss()->message,
            "The sound file \"" + folder.path("full.wav") +
                "\" cannot be written any further: No space left on "
                "device.");
}

TEST_F(FileOutputTest, FinerSamplesAreRoundedAndLouderOnesClipped) {
  const float kValues[] = {0.5f, 1.5f, 2.4f, -0.5f, -1.5f, 32'767.6f, -32'769, 1e6f, 3e38f, -3e38f};
  const auto path = folder.path("fine.aif");
  SF_INFO info = {};
  info.samplerate = 22'050;
  info.channels = 1;
  info.format = SF_FORMAT_AIFF | SF_FORMAT_FLOAT;
  SNDFILE* const file = sf_open(path.c_str(), SFM_WRITE, &info);
  for (const float value : kValues) {
    const float sample = value / 32'768;
    sf_write_float(file, &sample, 1);
  }
  sf_close(file);
  play(routeTo(folder.path("x.wav")), {path});
  EXPECT_EQ(readSound(folder.path("x.wav")).samples,
            Samples({0, 2, 2, 0, -2, 32'767, -32'768, 32'767, 32'767, -32'768}));
}

TEST_F(FileOutputTest, ALongRecordingIsWrittenWhole) {
  const Samples samples = countingSamples(2'000'000, 0);  // many times longer than the read-ahead
  play(routeTo(folder.path("x.wav")), {folder.write("long.aif", samples, {22'050, 1})});
  EXPECT_EQ(readSound(folder.path("x.wav")).samples, samples);
}

TEST_F(FileOutputTest, SaysWhyItCannotBeWritten) {
  std::filesystem::create_directory(folder.path("folder.wav"));
  const struct {
    std::string path;
    std::string_view cause;
  } kCases[] = {
      {folder.path("x.mp3"), "ends neither in .wav nor in .aif"},
      {folder.path("no/x.wav"), "No such file"},
      {folder.path("folder.wav"), "Is a directory"},
  };
  for (const auto& c : kCases) {
    const auto outcome = DesktopAudioSession(routeTo(c.path)).setActive(true);
    EXPECT_NE(outcome.error.value_or("").find(c.cause), std::string::npos) << c.path;
  }
}

// A sine cut into files of several formats. The largest step between neighbouring samples and the
// largest change of slope stay those of a sine of that pitch.
TEST_F(FileOutputTest, ASineCutOverFilesOfSeveralFormatsJoinsWithoutAStep) {
  const AudioFormat kFormats[] = {{44'100, 1}, {22'050, 1}, {48'000, 2}, {22'050, 2}, {48'000, 1}};
  constexpr double kHertz = 440;
  for (const AudioFormat target : {AudioFormat{48'000, 1}, {44'100, 1}, {22'050, 1}}) {
    SCOPED_TRACE(target.sampleRate);
    std::vector<std::string> paths;
    std::size_t atTarget = 0;
    for (int clip = 0; clip < 25; ++clip) {
      const AudioFormat format = kFormats[clip % 5];
      // A little over 17 ms: each cut falls at another phase, on a whole frame at every rate.
      const auto frames = static_cast<std::size_t>(format.sampleRate / 150 * (3 + clip % 4));
      const double start = static_cast<double>(atTarget) / target.sampleRate;
      atTarget += static_cast<std::size_t>(target.sampleRate / 150 * (3 + clip % 4));
      paths.push_back(folder.write(std::to_string(clip) + ".aif",
                                   sineSamples(kHertz, start, frames, format), format));
    }
    play(routeTo(folder.path("x.wav"), target), paths);
    const Samples heard = readSound(folder.path("x.wav")).samples;
    ASSERT_EQ(heard.size(), atTarget);
    const Samples expected = sineSamples(kHertz, 0, atTarget, target);
    int largest = 0;
    for (std::size_t i = 0; i < heard.size(); ++i) {
      largest = std::max(largest, std::abs(heard[i] - expected[i]));
    }
    EXPECT_LE(largest, 100) << "of 16,384";
    std::filesystem::remove(folder.path("x.wav"));
  }
}

}  // namespace
}  // namespace marlune
