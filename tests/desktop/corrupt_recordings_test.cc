// Recordings with seeded damage: each is refused or played, and uses memory in proportion to its
// size. Also meant for the sanitizers.

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstring>
#include <random>

#include "marlune/desktop/audio/recording/clip_decoder.h"
#include "support/recordings.h"

namespace marlune {
namespace {

constexpr AudioFormat kOutput = {48'000, 2};
constexpr unsigned kSeed = 20'261'124;

using Bytes = std::vector<char>;
using Random = std::mt19937;

std::size_t anyOf(Random& random, std::size_t count) { return random() % count; }

void flipBytes(Bytes& bytes, Random& random) {
  // Mostly in the header, where damage has the most effect.
  const std::size_t reach = anyOf(random, 4) == 0 ? bytes.size() : 64;
  for (std::size_t i = 1 + anyOf(random, 8); i > 0; --i) {
    bytes[anyOf(random, reach)] = static_cast<char>(random());
  }
}

void truncate(Bytes& bytes, Random& random) { bytes.resize(anyOf(random, bytes.size())); }

// Writes an extreme number over a size, a count or a rate.
void lie(Bytes& bytes, Random& random) {
  constexpr std::size_t kFields[] = {4, 16, 20, 22, 26, 28, 30, 42, 46, 50};
  constexpr std::uint32_t kNumbers[] = {0,           1,           0x7FFF'FFFF, 0x8000'0000,
                                        0xFFFF'FFFF, 0xFFFF'FFF0, 0x0100'0000, 0x401E'FFFF};
  for (std::size_t i = 1 + anyOf(random, 2); i > 0; --i) {
    const std::uint32_t number = __builtin_bswap32(kNumbers[anyOf(random, std::size(kNumbers))]);
    std::memcpy(bytes.data() + kFields[anyOf(random, std::size(kFields))], &number, 4);
  }
}

// The number of frames played; nothing if the recording is refused, which requires a reason.
std::optional<std::size_t> framesPlayedOf(const std::string& path) {
  auto opened = ClipDecoder::open(path);
  if (!opened.succeeded()) {
    EXPECT_FALSE(opened.failure().message.empty());
    return std::nullopt;
  }
  const std::unique_ptr<ClipDecoder> decoder = std::move(opened.value());
  EXPECT_EQ(decoder->convertTo(kOutput), std::nullopt);
  std::size_t frames = 0;
  SoundBlock block;
  do {
    decoder->fill(block);
    frames += block.frames;
  } while (!block.endsItem);
  return frames;
}

TEST(CorruptRecordingsTest, AreRefusedOrPlayWhatTheyHold) {
  const RecordingFolder folder;
  const std::vector<short> samples = countingSamples(3'000, 0);
  const Bytes kOriginals[] = {
      readBytes(folder.write("1.aif", samples, {22'050, 1})),
      readBytes(folder.write("2.aif", samples, {44'100, 2}, SF_FORMAT_AIFF | SF_FORMAT_PCM_24)),
      readBytes(folder.write("3.aif", samples, {22'050, 1}, SF_FORMAT_AIFF | SF_FORMAT_ULAW)),
      readBytes(folder.write("4.aif", samples, {22'050, 1}, SF_FORMAT_AIFF | SF_FORMAT_IMA_ADPCM)),
      readBytes(folder.write("5.aif", samples, {8'000, 1}, SF_FORMAT_AIFF | SF_FORMAT_FLOAT)),
  };
  constexpr void (*kDamages[])(Bytes&, Random&) = {&flipBytes, &truncate, &lie};
  int played = 0;
  int refused = 0;
  for (unsigned i = 0; i < 300; ++i) {
    SCOPED_TRACE("seed " + std::to_string(kSeed + i));
    Random random(kSeed + i);
    Bytes bytes = kOriginals[i % std::size(kOriginals)];
    kDamages[i / std::size(kOriginals) % std::size(kDamages)](bytes, random);
    const auto frames = framesPlayedOf(folder.writeBytes("damaged.aif", bytes));
    ++(frames ? played : refused);
    // At worst a byte is four compressed frames at a twelfth of the output's rate.
    EXPECT_LE(frames.value_or(0), bytes.size() * 4 * 12);
  }
  EXPECT_GT(played, 50);
  EXPECT_GT(refused, 50);
  rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  EXPECT_LT(usage.ru_maxrss, 512 * 1024) << "in KiB, a sanitizer's own included";
}

// The samples of 16 bits that are read without the library are those that the library reads.
TEST(CorruptRecordingsTest, PlainSamplesAreThoseOfTheLibrary) {
  const RecordingFolder folder;
  const std::vector<short> samples = countingSamples(3'000, 0);
  const Bytes kOriginals[] = {
      readBytes(folder.write("1.aif", samples, {22'050, 1})),
      readBytes(folder.write("2.aif", samples, {44'100, 2})),
      readBytes(folder.write("3.aif", samples, {8'000, 1},
                             SF_FORMAT_AIFF | SF_FORMAT_PCM_16 | SF_ENDIAN_LITTLE)),
  };
  constexpr void (*kDamages[])(Bytes&, Random&) = {&flipBytes, &truncate, &lie};
  int compared = 0;
  for (unsigned i = 0; i < 600; ++i) {
    SCOPED_TRACE("seed " + std::to_string(kSeed + i));
    Random random(kSeed + i);
    Bytes bytes = kOriginals[i % std::size(kOriginals)];
    if (i >= 3) kDamages[i / std::size(kOriginals) % std::size(kDamages)](bytes, random);
    const std::string path = folder.writeBytes("damaged.aif", bytes);
    const auto opened = Recording::open(path);
    if (!opened.succeeded() || !opened.value()->hasShorts()) continue;
    const std::unique_ptr<Recording>& recording = opened.value();
    std::vector<short> plain(static_cast<std::size_t>(recording->frameCount()) *
                             static_cast<std::size_t>(recording->format().channels));
    recording->read(plain.data(), static_cast<std::size_t>(recording->frameCount()));
    const Sound expected = readSound(path);
    EXPECT_EQ(recording->format(), expected.format);
    EXPECT_EQ(plain, expected.samples);
    ++compared;
  }
  EXPECT_GT(compared, 200);
}

TEST(CorruptRecordingsTest, SayHowMuchIsMissing) {
  const RecordingFolder folder;
  const std::vector<short> samples = countingSamples(3'000, 0);
  const struct {
    const char* why;
    int encoding;
    std::size_t bytesAFrame;  // of two channels
  } kCases[] = {
      {"16 bits, read without the library", SF_FORMAT_PCM_16, 4},
      {"little-endian", SF_FORMAT_PCM_16 | SF_ENDIAN_LITTLE, 4},
      {"24 bits", SF_FORMAT_PCM_24, 6},
      {"8 bits, compressed", SF_FORMAT_ULAW, 2},
      {"floats", SF_FORMAT_FLOAT, 8},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    Bytes bytes =
        readBytes(folder.write("whole.aif", samples, {22'050, 2}, SF_FORMAT_AIFF | c.encoding));
    EXPECT_EQ(Recording::open(folder.path("whole.aif")).value()->missingFrames(), 0);
    bytes.resize(bytes.size() - 500 * c.bytesAFrame + 1);
    const auto opened = Recording::open(folder.writeBytes("cut.aif", bytes));
    ASSERT_TRUE(opened.succeeded());
    const std::unique_ptr<Recording>& recording = opened.value();
    EXPECT_EQ(recording->missingFrames(), 500);
    EXPECT_EQ(recording->frameCount(), 1'000);
  }
}

}  // namespace
}  // namespace marlune
