// The cost of a keyed trace while its key is off.

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>

#include "fakes/fake_preferences.h"
#include "fakes/fake_system_log.h"
#include "marlune/platform/platform.h"
#include "marlune/util/tq_utils.h"

namespace {

std::atomic<std::uint64_t> allocations{0};

void* counted(std::size_t size) {
  allocations.fetch_add(1, std::memory_order_relaxed);
  if (void* const memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}

}  // namespace

// Every allocation of the program goes through this function; the other forms call it.
void* operator new(std::size_t size) { return counted(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace marlune {
namespace {

class Phrase : public Describable {
 public:
  std::string description() const override { return std::string(200, 'x'); }
};

// Traces with three arguments under `key`; reports the allocations per call.
void traceUnder(benchmark::State& state, std::string_view key) {
  Platform::shared().systemLog = std::make_shared<FakeSystemLog>();
  auto preferences = std::make_shared<FakePreferences>();
  preferences->set(key, Value::boolean(false));
  Platform::shared().preferences = preferences;
  const Phrase phrase;
  const std::string word = "finish[final]";
  TQUtils::forDefaultLog(key, "%@", phrase);  // looks the key up once

  const std::uint64_t before = allocations.load();
  for (auto _ : state) {
    TQUtils::forDefaultLog(key, "\t\tbefore overlay: %@ %@ %i", phrase, word, 3);
    benchmark::ClobberMemory();
  }
  const auto made = static_cast<double>(allocations.load() - before);
  state.counters["allocations"] = made / static_cast<double>(state.iterations());
  Platform::shared().systemLog = nullptr;
  Platform::shared().preferences = nullptr;
}

void BM_KeyedTraceOff(benchmark::State& state) { traceUnder(state, ZKPlistNotificationDefault); }
BENCHMARK(BM_KeyedTraceOff);

void BM_KeyedTraceOffLastKey(benchmark::State& state) {
  traceUnder(state, TQUtilsApplicationTraceDefault);
}
BENCHMARK(BM_KeyedTraceOffLastKey);

// A key that is not exported is looked up in every call.
void BM_KeyedTraceOffOtherKey(benchmark::State& state) { traceUnder(state, "SomeOtherDefault"); }
BENCHMARK(BM_KeyedTraceOffOtherKey);

// For comparison, and to show that allocations are counted.
void BM_FormattedLine(benchmark::State& state) {
  const std::uint64_t before = allocations.load();
  const Phrase phrase;
  for (auto _ : state) benchmark::DoNotOptimize(formatted("%@", {phrase}));
  const auto made = static_cast<double>(allocations.load() - before);
  state.counters["allocations"] = made / static_cast<double>(state.iterations());
}
BENCHMARK(BM_FormattedLine);

}  // namespace
}  // namespace marlune
