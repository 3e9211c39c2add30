// The cost of rewriting and loading. "Rewrite" takes words and returns words; its arguments are the
// number of rules and of words per phrase. Before measuring, the compiled grammar's results are
// compared with those of its tree.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "marlune/desktop/plist/property_list_file.h"
#include "marlune/desktop/plist/xml_list_writer.h"
#include "marlune/grammar/compiled/builder.h"
#include "marlune/grammar/compiled/grammar.h"
#include "marlune/grammar/file/grammar_file.h"
#include "marlune/grammar/model/simple_slot_sequence.h"
#include "marlune/grammar/parser.h"
#include "marlune/platform/platform.h"
#include "support/binary_list.h"
#include "support/counted_allocation.h"
#include "support/element_count.h"
#include "support/generated_grammar.h"

namespace marlune {
namespace {

using Words = std::vector<std::string>;

constexpr std::uint32_t kSeed = 20;
constexpr std::size_t kPhrases = 1'024;  // measured in turn, so that none is learnt

std::string writeFile(const std::string& name, const std::string& bytes) {
  const auto path = std::filesystem::temp_directory_path() / ("marlune_grammar_bench_" + name);
  std::ofstream(path, std::ios::binary) << bytes;
  return path.string();
}

// Each size is generated, written and loaded once.
struct Loaded {
  explicit Loaded(std::size_t rules) : grammar(rules, kSeed) {
    Platform::shared().propertyListReader = std::make_shared<PropertyListFile>();
    path = writeFile(std::to_string(rules) + ".plist", *writePropertyListXml(grammar.file()));
    parser = Parser::initWithPlistAtPath(path, "Main");
  }
  static Loaded& of(std::size_t rules) {
    static std::map<std::size_t, std::unique_ptr<Loaded>> all;
    auto& place = all[rules];
    if (!place) place = std::make_unique<Loaded>(rules);
    return *place;
  }

  Words byTree(const Words& words) const {
    const auto phrase = SimpleSlotSequence::blankBufferedSlotSequenceWithStrings(words);
    return parser->theGrammar()->appliedTo(*phrase)->stringArray();
  }

  GeneratedGrammar grammar;
  std::string path;
  std::unique_ptr<Parser> parser;
};

Words byParser(const Parser& parser, const Words& words) {
  return parser.resultOfRulesAppliedToStrings(words)->stringArray();
}

void measure(benchmark::State& state, const Loaded& loaded, const std::vector<Words>& phrases) {
  double changed = 0;
  for (const Words& words : phrases) {
    const Words result = byParser(*loaded.parser, words);
    if (result != loaded.byTree(words)) return state.SkipWithError("not the tree's words");
    changed += result != words;
  }
  const std::uint64_t before = allocationCount().calls;
  std::size_t turn = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(byParser(*loaded.parser, phrases[turn++ % phrases.size()]));
  }
  const auto allocations = static_cast<double>(allocationCount().calls - before);
  state.counters["allocations"] = allocations / static_cast<double>(state.iterations());
  state.counters["phrases changed"] = changed / static_cast<double>(phrases.size());
}

void BM_Rewrite(benchmark::State& state) {
  const Loaded& loaded = Loaded::of(static_cast<std::size_t>(state.range(0)));
  std::vector<Words> phrases;
  for (std::uint32_t seed = 0; seed < kPhrases; ++seed) {
    phrases.push_back(loaded.grammar.phrase(static_cast<std::size_t>(state.range(1)), seed));
  }
  measure(state, loaded, phrases);
}
BENCHMARK(BM_Rewrite)->ArgsProduct({{20, 100, 500, 2000}, {5, 10, 20, 40}});

// Phrases that no rule changes.
void BM_RewriteUntouched(benchmark::State& state) {
  const Loaded& loaded = Loaded::of(static_cast<std::size_t>(state.range(0)));
  std::vector<Words> phrases;
  for (std::uint32_t seed = 0; phrases.size() < kPhrases && seed < 50'000; ++seed) {
    Words words = loaded.grammar.untouchedPhrase(10, seed);
    if (loaded.byTree(words) == words) phrases.push_back(std::move(words));
  }
  if (phrases.empty()) return state.SkipWithError("every phrase is changed");
  measure(state, loaded, phrases);
}
BENCHMARK(BM_RewriteUntouched)->Arg(20)->Arg(100)->Arg(500)->Arg(2000);

// The same with the tree's own objects, for comparison.
void BM_RewriteByTree(benchmark::State& state) {
  const Loaded& loaded = Loaded::of(static_cast<std::size_t>(state.range(0)));
  const Words words = loaded.grammar.phrase(10, 1);
  for (auto _ : state) benchmark::DoNotOptimize(loaded.byTree(words));
}
BENCHMARK(BM_RewriteByTree)->Arg(100)->Arg(2000);

// Compiles the file's tree; reports the memory of the result.
void BM_Compile(benchmark::State& state) {
  const Loaded& loaded = Loaded::of(static_cast<std::size_t>(state.range(0)));
  const Value& plist = loaded.grammar.file().asDictionary()->valueForKey("Main");
  std::uint64_t bytes = 0;
  for (auto _ : state) {
    const std::uint64_t before = allocationCount().bytesHeld;
    bool isChanged = false;
    const auto compiled = CompiledBuilder::build(plist, isChanged);
    bytes = allocationCount().bytesHeld - before;
  }
  state.counters["bytes a rule"] = static_cast<double>(bytes) / static_cast<double>(state.range(0));
}
BENCHMARK(BM_Compile)->Arg(100)->Arg(500)->Arg(2000)->Unit(benchmark::kMillisecond);

// The total memory of a grammar: the packed file and the compiled form.
void BM_Ready(benchmark::State& state) {
  const auto rules = static_cast<std::size_t>(state.range(0));
  const std::string& source = Loaded::of(rules).path;
  std::uint64_t bytes = 0;
  std::size_t copies = 0;
  for (auto _ : state) {
    state.PauseTiming();
    const std::string path = source + "." + std::to_string(copies++);
    std::filesystem::copy_file(source, path, std::filesystem::copy_options::overwrite_existing);
    const std::uint64_t before = allocationCount().bytesHeld;
    state.ResumeTiming();
    const auto parser = Parser::initWithPlistAtPath(path, "Main");
    state.PauseTiming();
    bytes = allocationCount().bytesHeld - before;
    std::filesystem::remove(path);
    state.ResumeTiming();
  }
  state.counters["bytes a rule"] = static_cast<double>(bytes) / static_cast<double>(rules);
}
BENCHMARK(BM_Ready)->Arg(100)->Arg(500)->Arg(2000)->Iterations(5)->Unit(benchmark::kMillisecond);

void readList(benchmark::State& state, const std::string& path) {
  for (auto _ : state) {
    auto result = PropertyListFile().readFile(path);
    if (!result.succeeded()) return state.SkipWithError(result.failure().message.c_str());
    benchmark::DoNotOptimize(result);
  }
}

void BM_ReadXml(benchmark::State& state) { readList(state, Loaded::of(2000).path); }
BENCHMARK(BM_ReadXml)->Unit(benchmark::kMillisecond);

void BM_ReadBinary(benchmark::State& state) {
  BinaryList list;
  const std::size_t top = list.addValue(Loaded::of(2000).grammar.file());
  const std::string path = writeFile("binary.plist", list.file(top));
  readList(state, path);
}
BENCHMARK(BM_ReadBinary)->Unit(benchmark::kMillisecond);

void BM_CountElements(benchmark::State& state) {
  std::ifstream file(Loaded::of(2000).path, std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(file)), {});
  for (auto _ : state) {
    const std::size_t elements = elementCount(bytes);
    state.counters["elements"] = static_cast<double>(elements);
  }
  state.counters["bytes"] = static_cast<double>(bytes.size());
}
BENCHMARK(BM_CountElements)->Unit(benchmark::kMillisecond);

Value patternOf(std::vector<Value> slots) {
  return Value::array(std::make_shared<Array>(std::move(slots)));
}

Value kleene(std::vector<Value> members) {
  members.insert(members.begin(), Value::string("*"));
  return patternOf(std::move(members));
}

// One rule with these significant slots on 200 words. Also compares the result with the tree's.
void repetitions(benchmark::State& state, std::vector<Value> slots) {
  auto lhs = std::make_shared<Dictionary>();
  lhs->setValueForKey(patternOf(std::move(slots)), "_significantSlots");
  auto rule = std::make_shared<Dictionary>();
  rule->setValueForKey(Value::dictionary(lhs), "_lhs");
  rule->setValueForKey(patternOf({Value::string("x")}), "_rhs");
  rule->setValueForKey(Value::integer(0), "_order");
  auto tree = std::make_shared<Dictionary>();
  tree->setValueForKey(Value::dictionary(rule), "Main");
  GrammarFile file(Value::dictionary(tree));
  const auto compiled = CompiledGrammar::initFromFile(file, "Main", /*isTraced=*/false);
  const std::shared_ptr<GrammarPart> root = compiled->root();
  Words words(200, "a");
  words.front() = "c";  // without a "c" the rule would not be tried
  const auto phrase = SimpleSlotSequence::blankBufferedSlotSequenceWithStrings(words);
  if (compiled->appliedToStrings(words)->stringArray() != root->appliedTo(*phrase)->stringArray()) {
    return state.SkipWithError("not the tree's words");
  }
  if (state.range(0) == 0) {
    for (auto _ : state) benchmark::DoNotOptimize(compiled->appliedToStrings(words));
  } else {
    for (auto _ : state) benchmark::DoNotOptimize(root->appliedTo(*phrase));
  }
}

// Argument 0: compiled; 1: the tree's objects.
void BM_SuccessiveRepetitions(benchmark::State& state) {
  std::vector<Value> slots(20, kleene({Value::string("a")}));
  slots.push_back(Value::string("c"));
  repetitions(state, slots);
}
BENCHMARK(BM_SuccessiveRepetitions)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void BM_NestedRepetitions(benchmark::State& state) {
  Value nested = Value::string("a");
  for (int depth = 0; depth < 6; ++depth) nested = kleene({nested});
  repetitions(state, {nested, Value::string("c")});
}
BENCHMARK(BM_NestedRepetitions)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace marlune
