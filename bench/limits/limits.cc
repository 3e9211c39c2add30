// Measures the stated limits and prints them as the rows of a table. docs/limits.md explains each
// figure; scripts/bench inserts the table there.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "limits/reference_load.h"
#include "limits/refused_inputs.h"
#include "marlune/decompose/decomposer_implementation.h"
#include "marlune/desktop/plist/property_list_file.h"
#include "marlune/grammar/base/grammar_error.h"
#include "marlune/platform/platform.h"
#include "support/counted_allocation.h"
#include "support/dense_lists.h"
#include "support/element_count.h"

namespace marlune {
namespace {

using Words = std::vector<std::string>;
using Clock = std::chrono::steady_clock;

// The time of one call of `work`, in microseconds.
template <typename Work>
double microseconds(Work work) {
  const auto begin = Clock::now();
  work();
  return std::chrono::duration<double, std::micro>(Clock::now() - begin).count();
}

class Samples {
 public:
  void add(double value) { _values.push_back(value); }
  double median() { return _at(0.5); }
  double percentile99() { return _at(0.99); }

 private:
  double _at(double share) {
    std::sort(_values.begin(), _values.end());
    return _values[static_cast<std::size_t>(share * static_cast<double>(_values.size() - 1))];
  }
  std::vector<double> _values;
};

struct Stage {
  const char* name;
  Samples cold, warm;

  void print() {
    std::printf("| %s | %.1f | %.1f | %.2f | %.2f |\n", name, cold.median(), cold.percentile99(),
                warm.median(), warm.percentile99());
  }
};

void row(const char* name, const char* format, double value) {
  std::printf("| %s | ", name);
  std::printf(format, value);
  std::printf(" |\n");
}

// Cold: the first rewriting of the phrase, and the first use of the decomposer. Warm: the same
// phrase again, immediately.
void measureStages(const ReferenceLoad& load) {
  Stage rewriting{"rewriting", {}, {}}, decomposing{"decomposing", {}, {}};
  Stage together{"both", {}, {}};
  std::uint64_t warmAllocations = 0;
  std::size_t unsaid = 0;
  for (const Words& phrase : load.phrases()) {
    const auto decomposer = load.newDecomposer();
    for (const bool cold : {true, false}) {
      Words words;
      const double rewritten = microseconds(
          [&] { words = load.parser().resultOfRulesAppliedToStrings(phrase)->stringArray(); });
      Decomposition files;
      const std::uint64_t before = allocationCount().calls;
      const double decomposed =
          microseconds([&] { files = decomposer->optimalDecompositionOf(words); });
      if (!cold) warmAllocations += allocationCount().calls - before;
      unsaid += files == nullptr;
      const auto add = [cold](Stage& stage, double value) {
        (cold ? stage.cold : stage.warm).add(value);
      };
      add(rewriting, rewritten);
      add(decomposing, decomposed);
      add(together, rewritten + decomposed);
    }
  }
  std::printf("| stage | cold, median µs | cold, 99 %% µs | warm, median µs | warm, 99 %% µs |\n");
  std::printf("|---|---|---|---|---|\n");
  rewriting.print();
  decomposing.print();
  together.print();
  std::printf("\n| figure | value |\n|---|---|\n");
  row("phrases measured", "%.0f", static_cast<double>(load.phrases().size()));
  row("phrases without an answer", "%.0f", static_cast<double>(unsaid));
  row("allocations in all warm decompositions", "%.0f", static_cast<double>(warmAllocations));
}

void measureMemo(const ReferenceLoad& load) {
  const auto decomposer = load.newDecomposer();
  std::vector<Words> rewritten;
  for (const Words& phrase : load.phrases()) {
    rewritten.push_back(load.parser().resultOfRulesAppliedToStrings(phrase)->stringArray());
  }
  const std::uint64_t before = allocationCount().bytesHeld;
  for (const Words& words : rewritten) decomposer->optimalDecompositionOf(words);
  const auto bytes = static_cast<double>(allocationCount().bytesHeld - before);
  row("memory per remembered stretch, bytes", "%.0f",
      bytes / static_cast<double>(Decomposer::Implementation::of(*decomposer)._cache().size()));
}

// Runs the parser and the yardstick alternately, so that other load on the machine affects both.
void measureLoading() {
  Samples loading, counting, ratio;
  for (int round = 0; round < 21; ++round) {
    const std::string path = ReferenceLoad::writtenGrammar(2000, std::to_string(round));
    std::ifstream file(path, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(file)), {});
    std::size_t elements = 0;
    const double counted = microseconds([&] { elements = elementCount(bytes); });
    std::unique_ptr<Parser> parser;
    const double loaded = microseconds([&] { parser = Parser::initWithPlistAtPath(path, "Main"); });
    std::filesystem::remove(path);
    if (round == 0 || elements == 0) continue;  // the first round is a warm-up
    loading.add(loaded);
    counting.add(counted);
    ratio.add(loaded / counted);
  }
  row("loading 2,000 rules from XML, ms", "%.1f", loading.median() / 1000);
  row("counting the elements of the same file, ms", "%.1f", counting.median() / 1000);
  row("loading as a multiple of counting", "%.2f", ratio.median());
}

void measureGrammarMemory(std::size_t rules, const char* name) {
  const std::string path = ReferenceLoad::writtenGrammar(rules, "memory" + std::to_string(rules));
  const std::uint64_t before = allocationCount().bytesHeld;
  const auto parser = Parser::initWithPlistAtPath(path, "Main");
  const auto bytes = static_cast<double>(allocationCount().bytesHeld - before);
  std::filesystem::remove(path);
  row(name, "%.0f", bytes / static_cast<double>(rules));
}

// A rule with these slots, on words that are all equal except the first; in milliseconds.
double repetitions(Value slots, std::size_t count) {
  auto lhs = std::make_shared<Dictionary>();
  lhs->setValueForKey(std::move(slots), "_significantSlots");
  auto rule = std::make_shared<Dictionary>();
  rule->setValueForKey(Value::dictionary(lhs), "_lhs");
  rule->setValueForKey(Value::array(std::make_shared<Array>()), "_rhs");
  const auto part = GrammarPart::instanceFromPlist(Value::dictionary(rule));
  Words words(count, "a");
  words.front() = "c";
  const auto phrase = SimpleSlotSequence::blankBufferedSlotSequenceWithStrings(words);
  return microseconds([&] { part->appliedTo(*phrase); }) / 1000;
}

Value repeated(Value member) {
  return Value::array(
      std::make_shared<Array>(std::vector<Value>{Value::string("*"), std::move(member)}));
}

void measureWorst() {
  std::vector<Value> successive(20, repeated(Value::string("a")));
  successive.push_back(Value::string("c"));
  row("20 successive repetitions on 200 words, ms", "%.2f",
      repetitions(Value::array(std::make_shared<Array>(successive)), 200));
  Value nested = Value::string("a");
  for (int depth = 0; depth < 6; ++depth) nested = repeated(nested);
  const auto slots = Value::array(
      std::make_shared<Array>(std::vector<Value>{std::move(nested), Value::string("c")}));
  row("repetitions nested 6 deep on 200 words, ms", "%.2f", repetitions(slots, 200));
  row("repetitions nested 6 deep on 1,000 words, ms", "%.2f", repetitions(slots, 1000));
  row("repetitions nested 6 deep on 2,000 words, ms", "%.2f", repetitions(slots, 2000));
}

// All words differ, so that no stretch occurs twice.
void measureLongPhrase(const ReferenceLoad& load, std::size_t count, const char* name) {
  const auto decomposer = load.newDecomposer();
  Words words;
  for (std::size_t i = 0; i < count; ++i) words.push_back("word" + std::to_string(i));
  row(name, "%.2f", microseconds([&] { decomposer->optimalDecompositionOf(words); }) / 1000);
}

void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "limits: %s\n", what);
  std::exit(1);
}

// Measures an input that a bound stops; fails if the bound did not stop it.
void measureEndless(const std::string& path, const char* grammar, const Words& words,
                    const char* name) {
  struct Log : SystemLog {
    void write(std::string_view line) noexcept override {
      hasStopped |= line.find("although each had changed") != std::string_view::npos;
    }
    bool hasStopped = false;
  };
  const auto parser = Parser::initWithPlistAtPath(path, grammar);
  const auto log = std::make_shared<Log>();
  Platform::shared().systemLog = log;
  const double time = microseconds([&] { parser->resultOfRulesAppliedToStrings(words); });
  Platform::shared().systemLog = nullptr;
  require(log->hasStopped, "a rule ended before its bound");
  row(name, "%.0f", time / 1000);
}

void measureSettling(const std::string& path) {
  Words words(1000, "b");
  words.front() = "a";
  const auto parser = Parser::initWithPlistAtPath(path, "Settle");
  const double time =
      microseconds([&] { words = parser->resultOfRulesAppliedToStrings(words)->stringArray(); });
  require(words.back() == "a", "a rule that settles is stopped");
  row("1,000 passes over 1,000 words, ms", "%.0f", time / 1000);
}

void measureInserts(const std::string& path) {
  bool isRefused = false;
  const double time = microseconds([&] {
    try {
      Parser::initWithPlistAtPath(path, "Main");
    } catch (const GrammarError&) {
      isRefused = true;
    }
  });
  require(isRefused, "the exploding inserts were loaded");
  row("exploding inserts, until they are refused, ms", "%.0f", time / 1000);
}

void measureLargestList(std::string_view element, bool isRefused, const char* name) {
  const std::string list = largestListOf(element);
  Result<Value> result = Value();
  const double time = microseconds([&] { result = PropertyListFile().readBytes(list, ""); });
  require(result.succeeded() != isRefused, "a list of 64 MiB was accepted or refused wrongly");
  row(name, "%.2f", time / 1e6);
}

// A list of several MiB in which no container occurs twice.
void measureDenseList(const std::string& list, const char* name) {
  const std::uint64_t before = allocationCount().bytesHeld;
  const auto result = PropertyListFile().readBytes(list, "");
  require(result.succeeded(), "a dense list was refused");
  const auto bytes = static_cast<double>(allocationCount().bytesHeld - before);
  row(name, "%.1f", bytes / static_cast<double>(list.size()));
}

void measureRefused() {
  const std::string folder = std::filesystem::temp_directory_path();
  const std::string rules = folder + "/marlune_limits_rules.plist";
  const std::string inserts = folder + "/marlune_limits_inserts.plist";
  std::ofstream(rules, std::ios::binary) << endlessRules();
  std::ofstream(inserts, std::ios::binary) << explodingInserts();
  Words number(15, "0"), growing(300, "a");
  number.front() = "t";
  growing[0] = "b", growing[1] = "c";
  measureSettling(rules);
  measureEndless(rules, "Count", number, "10,000 passes over 17 slots, ms");
  measureEndless(rules, "Grow", growing, "a phrase that grows under nested repetitions, ms");
  measureEndless(rules, "GrowAndTell", growing, "the same, every comparison logged, ms");
  measureInserts(inserts);
  std::filesystem::remove(rules);
  std::filesystem::remove(inserts);
  measureLargestList("<true/>", false, "a list of 64 MiB, read, s");
  measureLargestList("<array/>", true, "a list of 64 MiB that would take too much memory, s");
  measureDenseList(denseNumbers(8'000'000), "an array of one number, multiple of its binary file");
  measureDenseList(denseRows(60'000, 17),
                   "rows of 17 shared entries, multiple of their binary file");
}

void measureAll() {
  Platform::shared().propertyListReader = std::make_shared<PropertyListFile>();
  const ReferenceLoad load;
  measureStages(load);
  measureMemo(load);
  measureLoading();
  measureGrammarMemory(ReferenceLoad::kRules, "memory per rule of a loaded grammar (300), bytes");
  measureGrammarMemory(2000, "memory per rule of a loaded grammar (2,000), bytes");
  measureWorst();
  measureLongPhrase(load, 80, "80 words without a recording, decomposed, ms");
  measureLongPhrase(load, 500, "500 words without a recording, decomposed, ms");
  measureLongPhrase(load, 2000, "2,000 words without a recording, decomposed, ms");
  measureLongPhrase(load, 10000, "10,000 words, too long to be decomposed, ms");
  measureRefused();
}

}  // namespace
}  // namespace marlune

int main() {
  marlune::measureAll();
  return 0;
}
