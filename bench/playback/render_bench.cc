// Renders recordings into one file through the queue engine, and with a plain loop over libsndfile:
// render_bench FOLDER OUT.wav RECORDING... Prints the median duration of each and the median ratio
// of pairs that alternate. Nothing is kept between two renders. Best on a RAM disk.
//
//     cmake --build --preset bench --target render_bench
//     cp examples/voice/*.aif /dev/shm/voice
//     build/bench/bench/playback/render_bench /dev/shm/voice /dev/shm/out.wav five_kilometers go

#include <sndfile.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "marlune/desktop/audio/desktop_audio_session.h"
#include "marlune/desktop/audio/desktop_queue_player.h"
#include "marlune/desktop/audio/output/audio_route.h"
#include "marlune/desktop/audio/output/file_output.h"
#include "marlune/desktop/audio/queue/file_player_item.h"

namespace marlune {
namespace {

constexpr int kPairs = 500;
constexpr int kPieceFrames = 4'096;
using Paths = std::vector<std::string>;

[[noreturn]] void stop(const std::string& reason) {
  std::fprintf(stderr, "render_bench: %s\n", reason.c_str());
  std::exit(1);
}

void renderThroughTheEngine(const Paths& recordings, const std::string& target) {
  const auto output = std::make_shared<FileOutput>(target);
  const auto route = std::make_shared<AudioRoute>(output);
  DesktopAudioSession session(route);
  const auto queue = DesktopQueuePlayer::overRoute(route);
  for (const std::string& path : recordings) {
    queue->insert(std::make_shared<FilePlayerItem>(path), nullptr);
  }
  session.setActive(true);
  queue->play();
  queue->waitUntilSettled();
  session.setActive(false);
  if (const auto failure = output->finish()) stop(failure->message);
}

void copyWithSndfile(const std::string& path, SNDFILE*& target, const std::string& targetPath) {
  SF_INFO info = {};
  SNDFILE* const source = sf_open(path.c_str(), SFM_READ, &info);
  if (!source) stop(path + ": " + sf_strerror(nullptr));
  if (!target) {
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    target = sf_open(targetPath.c_str(), SFM_WRITE, &info);
  }
  std::vector<short> piece(static_cast<std::size_t>(kPieceFrames * info.channels));
  while (const sf_count_t count = sf_readf_short(source, piece.data(), kPieceFrames)) {
    sf_writef_short(target, piece.data(), count);
  }
  sf_close(source);
}

void renderWithSndfile(const Paths& recordings, const std::string& target) {
  SNDFILE* file = nullptr;
  for (const std::string& path : recordings) copyWithSndfile(path, file, target);
  sf_close(file);
}

std::string contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

template <typename Render>
double microseconds(const Render& render, const Paths& recordings, const std::string& target) {
  const auto start = std::chrono::steady_clock::now();
  render(recordings, target);
  const std::chrono::duration<double, std::micro> time = std::chrono::steady_clock::now() - start;
  return time.count();
}

double median(std::vector<double> values) {
  std::nth_element(values.begin(), values.begin() + values.size() / 2, values.end());
  return values[values.size() / 2];
}

void run(const Paths& recordings, const std::string& target) {
  renderWithSndfile(recordings, target);
  const std::string expected = contentOf(target);
  renderThroughTheEngine(recordings, target);
  if (contentOf(target) != expected) stop("the two renders differ");
  std::vector<double> engine, plain, ratios;
  for (int i = 0; i < kPairs; ++i) {
    engine.push_back(microseconds(renderThroughTheEngine, recordings, target));
    plain.push_back(microseconds(renderWithSndfile, recordings, target));
    ratios.push_back(engine.back() / plain.back());
  }
  std::printf("%zu bytes, %d pairs: engine %.0f us, libsndfile %.0f us, ratio %.3f\n",
              expected.size(), kPairs, median(engine), median(plain), median(ratios));
}

}  // namespace
}  // namespace marlune

int main(int count, char** arguments) {
  if (count < 4) marlune::stop("give the recordings' folder, the output and names of recordings");
  marlune::Paths recordings;
  for (int i = 3; i < count; ++i) {
    recordings.push_back(std::string(arguments[1]) + '/' + arguments[i] + ".aif");
  }
  marlune::run(recordings, arguments[2]);
}
