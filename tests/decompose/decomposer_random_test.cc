#include <gtest/gtest.h>

#include <random>

#include "fakes/fake_resource_bundle.h"
#include "marlune/decompose/decomposer.h"
#include "marlune/decompose/decomposer_delegate.h"
#include "reference/reference_decomposer.h"
#include "support/platform_fixture.h"

namespace marlune {
namespace {

using Words = std::vector<std::string>;
using Answer = ReferenceDecomposer::Answer;
using Questions = std::vector<std::pair<std::string, bool>>;

constexpr unsigned kSeed = 20231;
constexpr int kCases = 4000;

Answer answerOf(const Decomposition& decomposition) {
  return decomposition ? Answer(*decomposition) : std::nullopt;
}

// Answers from two tables, and notes what it is asked.
class NotingDelegate : public DecomposerOverrides {
 public:
  NotingDelegate(const DecomposerDelegate::Overrides& whole,
                 const DecomposerDelegate::Overrides& parts)
      : _tables(DecomposerDelegate::initWithWholeOverrides(whole, parts)) {}
  Decomposition decompositionOf(Decomposer& decomposer, std::string_view key,
                                bool isSubsetOfWhole) override {
    questions.emplace_back(key, isSubsetOfWhole);
    return _tables->decompositionOf(decomposer, key, isSubsetOfWhole);
  }
  Questions questions;

 private:
  std::shared_ptr<DecomposerDelegate> _tables;
};

// Small pools make stretches repeat, keys coincide and recordings fit.
class Chance {
 public:
  explicit Chance(unsigned seed) : _engine(seed) {}

  std::size_t below(std::size_t end) {
    return std::uniform_int_distribution<std::size_t>(0, end - 1)(_engine);
  }
  Words words(std::size_t most) {
    static const Words kPlain{"a", "b", "c", "dd"};
    static const Words kOdd{"a",     "b",   "",     "[x]",  "b[x]",
                            "a b",   "a_",  "_[x]", " [x]", "[",
                            "]",     " ",   "_",    "a]b",  "b [y]",
                            "[x]_a", "[",   "",     "__[",  "[]",
                            "a[",    "c[x", "y]",   "[x]",  "longer-than-sixteen"};
    const Words& pool = _odd ? kOdd : kPlain;
    Words words(below(most + 1));
    for (std::string& word : words) word = pool[below(pool.size())];
    return words;
  }
  std::string key(std::size_t most) { return decompositionKey(words(most)); }
  Words files(std::size_t most) {
    Words files(below(most + 1));
    for (std::string& file : files) file = below(4) == 0 ? raw() : key(3);
    return files;
  }
  DecomposerDelegate::Overrides overrides() {
    DecomposerDelegate::Overrides overrides;
    for (std::size_t i = below(5); i > 0; --i) overrides[key(3)] = files(5);
    return overrides;
  }
  std::string raw() {
    const Words one = words(1);
    return one.empty() ? "" : one[0];
  }
  void setOdd(bool odd) { _odd = odd; }

 private:
  std::mt19937 _engine;
  bool _odd = false;
};

class DecomposerRandomTest : public PlatformFixture {
 protected:
  void _compareOnce(Chance& chance) {
    preferences->set(ZKPlistNotificationDefault, Value::boolean(false));
    const Words files = chance.files(chance.below(30));
    ReferenceDecomposer reference(files);
    const auto decomposer =
        Decomposer::initWithDirectory("Sounds", std::make_shared<FakeResourceBundle>(files));
    log->clear();
    const bool traces = chance.below(2) == 0;
    preferences->set(ZKPlistNotificationDefault, Value::boolean(traces));
    const bool debugging = chance.below(4) == 0;
    decomposer->_setDebugging(debugging);
    reference.debugging = debugging;

    std::shared_ptr<NotingDelegate> delegate;
    Questions questions;
    for (int phrase = 0; phrase < 4; ++phrase) {
      if (chance.below(4) == 0) {
        delegate.reset();
        questions.clear();
        reference.delegate = nullptr;
      } else if (chance.below(3) == 0) {
        delegate = std::make_shared<NotingDelegate>(chance.overrides(), chance.overrides());
        decomposer->setDelegate(delegate);
        questions.clear();
        reference.delegate = [&questions, tables = *delegate, &decomposer](
                                 const std::string& key, bool isSubsetOfWhole) mutable {
          questions.emplace_back(key, isSubsetOfWhole);
          return answerOf(tables.decompositionOf(*decomposer, key, isSubsetOfWhole));
        };
      }
      const Words words = chance.words(chance.below(30) == 0 ? 30 : 9);
      SCOPED_TRACE(testing::PrintToString(files) + " say " + testing::PrintToString(words));
      ASSERT_EQ(answerOf(decomposer->optimalDecompositionOf(words)),
                reference.optimalDecompositionOf(words));
      ASSERT_EQ(delegate ? delegate->questions : Questions(), questions);
      ASSERT_EQ(decomposer->iterations(), reference.iterations);
      ASSERT_EQ(log->lines(), traces ? reference.lines : Words());
      std::map<std::string, Answer> cache;
      for (const auto& [key, answer] : decomposer->_cache()) cache[key] = answerOf(answer);
      ASSERT_EQ(cache, reference.cache);
    }
  }
};

TEST_F(DecomposerRandomTest, CannotBeToldFromThePlainRecursion) {
  RecordProperty("seed", static_cast<int>(kSeed));
  std::printf("seed %u, %d cases\n", kSeed, kCases);
  Chance chance(kSeed);
  for (int i = 0; i < kCases; ++i) {
    SCOPED_TRACE(i);
    chance.setOdd(i % 3 != 0);
    _compareOnce(chance);
    if (HasFatalFailure()) return;
  }
}

}  // namespace
}  // namespace marlune
