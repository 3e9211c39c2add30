// Cold and remembered decomposition, compared with two programs that remember nothing: one looks up
// every stretch in a hash set, one uses a trie of words. Arguments: words per phrase, recordings.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>
#include <map>
#include <memory>
#include <vector>

#include "decompose/peers.h"
#include "decompose/phrase_world.h"
#include "marlune/decompose/decomposer_implementation.h"
#include "marlune/testing/fake_resource_bundle.h"
#include "support/counted_allocation.h"

namespace marlune {
namespace {

using Words = std::vector<std::string>;

// Different ones: the branch predictor cannot learn a phrase, and what a decomposer remembers
// grows.
constexpr std::size_t kPhrases = 1'024;

struct Input {
  std::shared_ptr<FakeResourceBundle> bundle;
  Words files;
  std::vector<Words> phrases;
  std::size_t stretches = 0;  // remembered by a decomposer after all phrases
};

std::unique_ptr<Decomposer> decomposerFor(const Input& input) {
  return Decomposer::initWithDirectory("Sounds", input.bundle);
}

// Created once for each pair of arguments.
const Input& inputFor(const benchmark::State& state) {
  static std::map<std::pair<std::int64_t, std::int64_t>, Input> inputs;
  Input& input = inputs[{state.range(0), state.range(1)}];
  if (input.bundle) return input;
  PhraseWorld world(static_cast<std::size_t>(state.range(1)));
  input.files = world.files;
  input.bundle = std::make_shared<FakeResourceBundle>(world.files);
  for (std::size_t i = 0; i < kPhrases; ++i) {
    input.phrases.push_back(world.phrase(static_cast<std::size_t>(state.range(0))));
  }
  const auto decomposer = decomposerFor(input);
  for (const Words& phrase : input.phrases) decomposer->optimalDecompositionOf(phrase);
  input.stretches = Decomposer::Implementation::of(*decomposer)._cache().size();
  return input;
}

double processorSeconds() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

// Runs all phrases once. Together they evict each other's text and state from the caches, as
// happens before an unexpected phrase. Returns the seconds of processor time.
template <typename Say>
double secondsOnce(const Input& input, const Say& say) {
  const double begin = processorSeconds();
  for (const Words& phrase : input.phrases) benchmark::DoNotOptimize(say(phrase));
  return processorSeconds() - begin;
}

template <typename Say>
double timeOnce(benchmark::State& state, const Input& input, const Say& say) {
  const double taken = secondsOnce(input, say);
  state.SetIterationTime(taken / kPhrases);
  return taken;
}

// Every phrase is new to the decomposer, though short stretches of it may not be. Each round runs
// all phrases on a new decomposer.
void BM_DecomposeCold(benchmark::State& state) {
  const Input& input = inputFor(state);
  double seconds = 0, bytes = 0;
  for (auto _ : state) {
    const auto decomposer = decomposerFor(input);
    const std::uint64_t bytesBefore = allocationCount().bytesHeld;
    seconds += timeOnce(state, input, [&](const Words& phrase) {
      return decomposer->optimalDecompositionOf(phrase);
    });
    bytes = static_cast<double>(allocationCount().bytesHeld - bytesBefore);
  }
  const auto remembered = static_cast<double>(input.stretches);
  state.counters["stretches"] = remembered / kPhrases;
  state.counters["ns/stretch"] =
      seconds * 1e9 / static_cast<double>(state.iterations()) / remembered;
  state.counters["bytes/stretch"] = bytes / remembered;
}

// The same for the peers: a new one in each round, each phrase once.
template <typename Peer>
void runPeerCold(benchmark::State& state) {
  const Input& input = inputFor(state);
  for (auto _ : state) {
    const Peer peer(input.files);
    timeOnce(state, input, [&](const Words& phrase) { return peer.decompose(phrase); });
  }
}
void BM_PeerHashSetCold(benchmark::State& state) { runPeerCold<HashSetPeer>(state); }
void BM_PeerTrieCold(benchmark::State& state) { runPeerCold<TriePeer>(state); }

// A new decomposer and the trie in turn, so that other work on the machine slows both. The time is
// the decomposer's; "trie/ours" is the median of the rounds' ratios: above 1 the decomposer is
// faster.
void BM_DecomposeColdAgainstTrie(benchmark::State& state) {
  const Input& input = inputFor(state);
  std::vector<double> ratios;
  for (auto _ : state) {
    const auto decomposer = decomposerFor(input);
    const TriePeer trie(input.files);
    const double ours = timeOnce(state, input, [&](const Words& phrase) {
      return decomposer->optimalDecompositionOf(phrase);
    });
    ratios.push_back(
        secondsOnce(input, [&](const Words& phrase) { return trie.decompose(phrase); }) / ours);
  }
  std::sort(ratios.begin(), ratios.end());
  state.counters["trie/ours"] = ratios[ratios.size() / 2];
}

void BM_DecomposeRemembered(benchmark::State& state) {
  const Input& input = inputFor(state);
  const auto decomposer = decomposerFor(input);
  for (const Words& phrase : input.phrases) decomposer->optimalDecompositionOf(phrase);
  const std::uint64_t callsBefore = allocationCount().calls;
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(decomposer->optimalDecompositionOf(input.phrases[i++ % kPhrases]));
  }
  state.counters["allocations"] = static_cast<double>(allocationCount().calls - callsBefore) /
                                  static_cast<double>(state.iterations());
}

template <typename Peer>
void runPeer(benchmark::State& state) {
  const Input& input = inputFor(state);
  const Peer peer(input.files);
  const auto decomposer = decomposerFor(input);
  for (const Words& phrase : input.phrases) {
    const Decomposition ours = decomposer->optimalDecompositionOf(phrase);
    if (peer.decompose(phrase) != (ours ? *ours : Words())) state.SkipWithError("answers differ");
  }
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(peer.decompose(input.phrases[i++ % kPhrases]));
  }
}
void BM_PeerHashSet(benchmark::State& state) { runPeer<HashSetPeer>(state); }
void BM_PeerTrie(benchmark::State& state) { runPeer<TriePeer>(state); }

void sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgNames({"words", "files"});
  benchmark->ArgsProduct({{5, 10, 20, 40, 80}, {100, 1000, 10000, 50000}});
}
// Each round reads the voice again, which takes far longer than the measured part, so there are
// only a few rounds.
BENCHMARK(BM_DecomposeColdAgainstTrie)->Apply(sizes)->UseManualTime()->Iterations(5);
BENCHMARK(BM_DecomposeCold)->Apply(sizes)->UseManualTime()->Iterations(3);
BENCHMARK(BM_PeerTrieCold)->Apply(sizes)->UseManualTime()->Iterations(3);
BENCHMARK(BM_PeerHashSetCold)->Apply(sizes)->UseManualTime()->Iterations(3);
BENCHMARK(BM_PeerHashSet)->Apply(sizes);
BENCHMARK(BM_DecomposeRemembered)->Apply(sizes);
BENCHMARK(BM_PeerTrie)->Apply(sizes);

}  // namespace
}  // namespace marlune
