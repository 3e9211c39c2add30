#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "marlune/desktop/audio/recording/clip_decoder.h"

namespace {

using namespace marlune;

void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "%s\n", what);
  std::abort();
}

// An in-memory file with these bytes; always the same file.
std::string fileOf(const std::uint8_t* data, std::size_t size) {
  static const int file = memfd_create("recording", MFD_CLOEXEC);
  const bool isWritten =
      ftruncate(file, 0) == 0 && pwrite(file, data, size, 0) == static_cast<ssize_t>(size);
  require(isWritten, "cannot create a file in memory");
  return "/proc/self/fd/" + std::to_string(file);
}

// At most, a byte is four frames of a compressed kind at a twelfth of the output's rate.
void play(ClipDecoder& decoder, std::size_t most) {
  std::size_t frames = 0;
  SoundBlock block;
  do {
    decoder.fill(block);
    frames += block.frames;
    require(frames <= most, "more sound than the file can contain");
    require(std::all_of(block.samples.begin(), block.samples.end(),
                        [](float sample) { return std::isfinite(sample); }),
            "a sample is not a number");
  } while (!block.endsItem);
}

}  // namespace

// Checks that any bytes either are refused with a cause or play to the end within the length limit.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kMostBytes = 16'384;
  if (size > kMostBytes) return 0;
  auto opened = ClipDecoder::open(fileOf(data, size));
  if (!opened.succeeded()) {
    require(!opened.failure().message.empty(), "refused without a cause");
    return 0;
  }
  const std::unique_ptr<ClipDecoder> decoder = std::move(opened.value());
  const auto failure = decoder->convertTo({48'000, 2});
  require(!failure, failure ? failure->message.c_str() : "");
  play(*decoder, size * 4 * 12);
  return 0;
}
