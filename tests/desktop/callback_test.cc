// Checks what the output's callback does: this program counts every allocation, release and lock on
// the thread that is inside it.

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <cstdlib>
#include <utility>

#include "marlune/desktop/audio/desktop_audio_session.h"
#include "marlune/desktop/audio/output/audio_route.h"
#include "marlune/desktop/audio/output/clock_output.h"
#include "support/engine_rig.h"

namespace {

thread_local bool isInCallback = false;
std::atomic<int> callsInCallback = 0;

void count() {
  if (isInCallback) callsInCallback.fetch_add(1);
}

}  // namespace

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t number, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void __libc_free(void* memory);

void* malloc(std::size_t size) {
  count();
  return __libc_malloc(size);
}
void* calloc(std::size_t number, std::size_t size) {
  count();
  return __libc_calloc(number, size);
}
void* realloc(void* memory, std::size_t size) {
  count();
  return __libc_realloc(memory, size);
}
void free(void* memory) {
  count();
  __libc_free(memory);
}
int pthread_mutex_lock(pthread_mutex_t* mutex) noexcept {
  using Lock = int (*)(pthread_mutex_t*);
  static std::atomic<Lock> next = nullptr;
  if (!next) next = reinterpret_cast<Lock>(::dlsym(RTLD_NEXT, "pthread_mutex_lock"));
  count();
  return next.load()(mutex);
}
int pthread_cond_signal(pthread_cond_t* condition) noexcept {
  using Signal = int (*)(pthread_cond_t*);
  static std::atomic<Signal> next = nullptr;
  if (!next) next = reinterpret_cast<Signal>(::dlsym(RTLD_NEXT, "pthread_cond_signal"));
  count();
  return next.load()(condition);
}
}

namespace marlune {
namespace {

// A clock that counts what happens inside its callback.
class WatchedOutput : public AudioOutput, private AudioSource {
 public:
  std::optional<Failure> open(AudioSource& source, const std::string& role) override {
    _source = &source;
    return _clock.open(*this, role);
  }
  void close() override { _clock.close(); }
  AudioFormat formatForClip(const AudioFormat& clip) override { return _clock.formatForClip(clip); }
  std::atomic<std::size_t> sounding = 0;

 private:
  std::size_t render(float* frames, std::size_t count, int channels) noexcept override {
    isInCallback = true;
    sounding += _source->render(frames, count, channels);
    isInCallback = false;
    return 0;
  }

  ClockOutput _clock{{44'100, 2}, nullptr, /*speed=*/50};
  AudioSource* _source = nullptr;
};

TEST(CallbackTest, AllocatesReleasesAndLocksNothingOverAWholeRun) {
  isInCallback = true;
  void* volatile memory = std::malloc(1);  // volatile keeps the allocation
  std::free(memory);
  std::mutex().lock();
  isInCallback = false;
  ASSERT_EQ(callsInCallback.exchange(0), 3) << "the counter counts";

  const RecordingFolder folder;
  const std::string paths[] = {
      folder.write("1.aif", countingSamples(30'000, 0), {22'050, 1}),
      folder.write("2.aif", countingSamples(2'000, 0), {44'100, 2}),
      folder.write("3.aif", countingSamples(1, 0), {22'050, 1}),
  };
  const auto output = std::make_shared<WatchedOutput>();
  const auto route = std::make_shared<AudioRoute>(output);
  DesktopAudioSession session(route);
  const auto queue = DesktopQueuePlayer::overRoute(route);
  const auto append = [&] {
    for (const std::string& path : paths) EngineRig::append(*queue, path);
  };
  const auto playOut = [&] {
    while (!queue->items().empty()) std::this_thread::yield();
  };
  session.setActive(true);
  append();
  queue->play();
  playOut();
  for (int i = 0; i < 20; ++i) append();
  while (output->sounding < 100'000) std::this_thread::yield();
  queue->setRate(0);
  queue->removeAllItems();
  append();
  queue->play();
  playOut();
  queue->setRate(0);
  session.setActive(false);
  EXPECT_GT(output->sounding, 150'000u);
  EXPECT_EQ(callsInCallback.load(), 0);
}

}  // namespace
}  // namespace marlune
